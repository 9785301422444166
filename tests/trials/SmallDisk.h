#pragma once

#include <filesystem>
#include <fstream>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <unistd.h>

/// Makes the folder a disk of a megabyte, for this process; false when that is not allowed.
inline bool mountSmallDisk(const std::filesystem::path& folder) {
    const std::string user = "0 " + std::to_string(getuid()) + " 1";
    const std::string group = "0 " + std::to_string(getgid()) + " 1";
    if (unshare(CLONE_NEWNS | (geteuid() == 0 ? 0 : CLONE_NEWUSER)) != 0)
        return false;
    if (geteuid() != 0) {
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/gid_map") << group;
        std::ofstream("/proc/self/uid_map") << user;
    }
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("none", folder.c_str(), "tmpfs", 0, "size=1m,mode=0700") == 0;
}

/// Lets nobody write to what `mountSmallDisk` made, or everybody again.
inline bool setWritable(const std::filesystem::path& disk, bool isWritable) {
    const unsigned long flags = isWritable ? MS_REMOUNT : MS_REMOUNT | MS_RDONLY;
    return mount("none", disk.c_str(), nullptr, flags, nullptr) == 0;
}

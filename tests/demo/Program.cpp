#include "Program.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

TemporaryFolder::TemporaryFolder() {
    std::string name = std::filesystem::temp_directory_path() / "zorvan-demo-test-XXXXXX";
    if (mkdtemp(name.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    path = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

namespace {

std::string quoted(const std::string& word) {
    std::string result = "'";
    for (const char c : word)
        c == '\'' ? result += "'\\''" : result += c;
    return result + "'";
}

std::string contents(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

Outcome run(const std::vector<std::string>& command) {
    const TemporaryFolder folder;
    std::string line;
    for (const auto& word : command)
        line += quoted(word) + " ";
    line += ">" + quoted(folder.path / "output") + " 2>" + quoted(folder.path / "errors");
    const int status = std::system(line.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contents(folder.path / "output"),
            contents(folder.path / "errors")};
}

#pragma once

#include <functional>
#include <string>
#include <vector>

/// What the desktop does for the application.
namespace desktop {

/// Asks, and calls back when the answer is yes.
void ask(const std::string& question, const std::string& details, const std::string& yes,
         std::function<void()> confirmed);
void complain(const std::string& text);
/// Calls back with the path, when a person has chosen a folder.
void chooseFolder(const std::string& title, std::function<void(const std::string&)> chosen);

/// Moves a file to the trash that it can be taken back from; false, and it stays, when there is
/// none. From any thread.
bool moveToTrash(const std::string& path);

} // namespace desktop

#pragma once

#include <string>
#include <vector>

/// `shelf settings DOMAIN`: a domain of settings as an XML property list, for looking at it and for
/// keeping a copy. The text to print; throws `UsageError` when there is no such domain, or no
/// domain is given.
std::string settingsAsXML(const std::vector<std::string>& arguments);

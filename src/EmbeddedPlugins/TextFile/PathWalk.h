// The way that the system takes from the root to a file: folders, links and what they lead to.
#pragma once

#include <functional>
#include <string>

/// Takes an absolute path step by step and follows its links, at most as many as the system does.
/// `step` gets each folder, by a path without links, and the name that is looked up in it next: before it is
/// looked up, so that whoever watches the folder from then on misses nothing. Returns the file by a path
/// without links; empty when the way ends before a regular file is reached.
std::string walkPath(const std::string& path,
                     const std::function<void(const std::string& folder, const std::string& name)>& step);

// Takes name after name off the path, and puts the target of each link in its place.
#include "EmbeddedPlugins/TextFile/PathWalk.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <vector>

namespace {

constexpr int mostLinks = 40;
constexpr int mostSteps = 1000;

/// Puts the names of a path onto the ones still to take, which are taken from the back.
void putNames(std::vector<std::string>& names, const std::string& path) {
    std::size_t end = path.size();
    while (end != std::string::npos && end > 0) {
        const std::size_t slash = path.rfind('/', end - 1);
        const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
        if (start < end && path.compare(start, end - start, ".") != 0)
            names.push_back(path.substr(start, end - start));
        end = slash;
    }
}

std::string joined(const std::string& folder, const std::string& name) {
    return folder == "/" ? folder + name : folder + '/' + name;
}

std::string parentOf(const std::string& folder) {
    const std::size_t slash = folder.rfind('/');
    return slash == 0 || slash == std::string::npos ? std::string("/") : folder.substr(0, slash);
}

/// Empty when it cannot be read.
std::string targetOf(const std::string& link) {
    std::array<char, PATH_MAX> target{};
    const ssize_t length = readlink(link.c_str(), target.data(), target.size());
    return length > 0 ? std::string(target.data(), static_cast<std::size_t>(length)) : std::string();
}

} // namespace

std::string walkPath(const std::string& path,
                     const std::function<void(const std::string& folder, const std::string& name)>& step) {
    std::vector<std::string> names;
    putNames(names, path);
    std::string folder = "/";
    int links = 0;
    for (int steps = 0; !names.empty() && steps < mostSteps; ++steps) {
        const std::string name = std::move(names.back());
        names.pop_back();
        if (name == "..") {
            folder = parentOf(folder);
            continue;
        }
        step(folder, name);
        const std::string here = joined(folder, name);
        struct stat status {};
        if (lstat(here.c_str(), &status) != 0)
            return {};
        if (S_ISLNK(status.st_mode)) {
            const std::string target = targetOf(here);
            if (target.empty() || ++links > mostLinks)
                return {};
            putNames(names, target);
            if (target.front() == '/')
                folder = "/";
        } else if (S_ISDIR(status.st_mode)) {
            folder = here;
        } else {
            return S_ISREG(status.st_mode) && names.empty() ? here : std::string();
        }
    }
    return {};
}

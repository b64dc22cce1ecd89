#include "set/epghost/Options.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace epgset {

std::string defaultStateFolder() {
    const char* state = std::getenv("XDG_STATE_HOME");
    if (state != nullptr && state[0] == '/') return std::string(state) + "/epghost";
    const char* home = std::getenv("HOME");
    if (home == nullptr || home[0] == '\0') {
        const passwd* user = getpwuid(getuid());
        home = user == nullptr ? nullptr : user->pw_dir;
    }
    if (home == nullptr || home[0] == '\0')
        throw StartError("--state is missing and there is no home folder");
    return std::string(home) + "/.local/state/epghost";
}

}  // namespace epgset

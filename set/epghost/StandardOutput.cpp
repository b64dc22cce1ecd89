#include "set/epghost/StandardOutput.h"

#include <iostream>

#include "set/epghost/Options.h"

namespace epgset {

void finishStandardOutput() {
    std::cout.flush();
    if (!std::cout) throw StartError("standard output cannot be written to");
}

}  // namespace epgset

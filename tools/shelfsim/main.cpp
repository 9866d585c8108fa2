// shelfctl: a simulated shelf manager command line for exercising the
// gateway without a shelf.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "session.h"

int main() {
    shelfsim::SessionConfig cfg;
    const char* path = std::getenv("SHELFSIM_STATE");
    cfg.state_path = (path && *path) ? path : "/tmp/shelfsim.state";
    const char* offline = std::getenv("SHELFSIM_OFFLINE");
    cfg.offline = offline && std::strcmp(offline, "1") == 0;
    return shelfsim::run_session(stdin, stdout, cfg);
}

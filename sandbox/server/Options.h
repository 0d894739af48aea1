#pragma once

#include <string>

namespace sandbox {

struct Options {
    int httpPort = 0;                   // 0: any free port
    int httpsPort = 0;                  // 0: any free port
    std::string authorityFile;          // UTF-8 path that receives the authority's certificate; empty: none is written
    std::string tlsName = "127.0.0.1";  // host name or IP address in the server's certificate
    std::string tlsMax = "1.3";         // highest TLS version offered: 1.1, 1.2 or 1.3
    bool endWithInput = false;          // else Ctrl-C is what ends it
};

struct CommandLine {
    Options options;
    bool run = true;  // false: nothing is left to do but to exit
    int exitCode = 0;
};

// Reads the process's command line. Bad options are reported in one line on standard error, help on standard output.
CommandLine ReadCommandLine();

}  // namespace sandbox

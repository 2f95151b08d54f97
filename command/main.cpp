/// The program `tesseret`.

#include <csignal>

#include "command/CommandLine.h"

int main(int argc, char** argv)
{
    std::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow is an error like a full disk
    return Tesseret::Command::runCommandLine(argc, argv);
}

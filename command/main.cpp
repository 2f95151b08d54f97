/// The program `tesseret`.

#include <csignal>

#include "command/CommandLine.h"

int main(int argc, char** argv)
{
    std::signal(SIGXFSZ, SIG_IGN);  // a file at its size limit is an error like a full disk
    return Tesseret::Command::runCommandLine(argc, argv);
}

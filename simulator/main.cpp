#include "Simulator.h"
#include "replay/Replay.h"

#include <exception>
#include <iostream>

int main(int argc, char** argv)
{
    try {
        int exitCode = 0;
        const auto options = simulator::readOptions(argc, argv, exitCode);
        if (!options)
            return exitCode;
        if (!options->replay.empty())
            return simulator::Replay(*options).run() ? 0 : 3;
        simulator::Simulator(*options).run();
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "radio_simulator: " << error.what() << '\n';
        return 1;
    }
}

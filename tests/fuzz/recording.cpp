// Logs that the simulated radio plays, and its faults as they stand on its command line.

#include "replay/Recording.h"
#include "Fuzzing.h"
#include "device/Faults.h"

#include <sstream>

using namespace simulator;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(bytes), size);
    try {
        const Fault fault = parseFault(text);
        EXPECT_GE(fault.last, fault.first);
    } catch (const std::invalid_argument&) {
    }
    try {
        std::istringstream log(text);
        std::string sent;
        int line = 0;
        for (const Exchange& exchange : readRecording(log)) {
            EXPECT_GT(exchange.line, line);
            line = exchange.line;
            for (const auto byte : exchange.sent)
                sent += hex(byte, 2);
            sent += '\n';
        }
        // Every byte that the log says was sent, and no other.
        std::istringstream lines(text);
        for (std::string each; std::getline(lines, each);) {
            const auto at = each.find("  Sent     : ");
            if (at == std::string::npos || at == 0 ||
                std::isdigit(static_cast<unsigned char>(each[at - 1])) == 0)
                continue;
            each = each.substr(at + 13);
            each.erase(each.find_last_not_of('\r') + 1);
            EXPECT_TRUE(sent.starts_with(each + '\n'));
            sent.erase(0, each.size() + 1);
        }
        EXPECT_EQ(sent, "");
    } catch (const std::runtime_error&) {
    }
    return 0;
}

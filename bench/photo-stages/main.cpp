// SPDX-License-Identifier: GPL-3.0-or-later
// Measures the memory that many photos need, for the benchmarks. Prints one JSON object.
//
//   lumetwin-photo-stages sbs|spatial FILE OUT COUNT   resident KiB after 50 conversions and after COUNT

#include "engine/batch/FileConversion.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <string>

#include <unistd.h>

namespace {

long residentKiB() {
    long pages = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

} // namespace

int main(int count, char **words) {
    if (count != 5) {
        std::fputs("usage: lumetwin-photo-stages sbs|spatial FILE OUT COUNT\n", stderr);
        return 2;
    }
    const auto kind = std::string(words[1]) == "sbs" ? lumetwin::ConversionKind::spatialPhotoToSBS
                                                     : lumetwin::ConversionKind::sbsImageToSpatial;
    const int rounds = std::atoi(words[4]);
    try {
        const lumetwin::ConversionSettings settings;
        long early = 0;
        for (int round = 1; round <= rounds; ++round) {
            lumetwin::convertFile(lumetwin::MediaOperations::inProcess(), kind, settings,
                                  lumetwin::openInput(kind, words[2]), words[3], {},
                                  lumetwin::SystemVersion::current());
            if (round == 50)
                early = residentKiB();
        }
        std::printf("{\"early\": %ld, \"late\": %ld}\n", early, residentKiB());
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}

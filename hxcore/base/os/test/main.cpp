#include "os/setUserHelper.h"
#include "os/test/ChildRoad.h"
#include "plat/Exception.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <filesystem>

namespace os {

const ChildRoad* ChildRoad::find(int argc, char** argv) {
    if (argc < 2)
        return nullptr;
    for (const ChildRoad* road = first; road; road = road->next) {
        if (strcmp(road->word, argv[1]) == 0)
            return road;
    }
    return nullptr;
}

std::string ChildRoad::program() { return std::filesystem::read_symlink("/proc/self/exe").string(); }

} // namespace os

int main(int argc, char** argv) {
    try {
        os::runSetUserHelper(argc, argv);
    } catch (const plat::Exception& failure) {
        fprintf(stderr, "%s\n", failure.describe().c_str());
        return 1;
    }
    if (const os::ChildRoad* road = os::ChildRoad::find(argc, argv))
        return road->run(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

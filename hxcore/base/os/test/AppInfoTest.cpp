#include "os/AppInfo.h"

#include "os/SharedConfigDirs.h"
#include "plat/test/TempDir.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace os {
namespace {

class AppInfoTest : public testing::Test {
protected:
    AppInfoTest() { AppInfo::reset(); }
    ~AppInfoTest() override { AppInfo::reset(); }
    static std::vector<std::string> dirs() {
        std::vector<std::string> all;
        for (const plat::String& dir : SharedConfigDirs::list())
            all.emplace_back(dir.c_str());
        return all;
    }
};

TEST_F(AppInfoTest, DerivesTheUsersFiles) {
    EXPECT_STREQ(AppInfo::userConfigFile().c_str(), "");
    AppInfo::setConfigDir("/home/me/.zef");
    AppInfo::setApp("prog-user");
    EXPECT_STREQ(AppInfo::userConfigDir().c_str(), "/home/me/.zef/config.d");
    EXPECT_STREQ(AppInfo::userConfigFile().c_str(), "/home/me/.zef/config.d/prog-user");
    EXPECT_EQ(AppInfo::executableDir()[0], '/');
}

using AppInfoDeathTest = AppInfoTest;

TEST_F(AppInfoDeathTest, AWordThatWasNeverSetIsAFaultUnlessAllowed) {
    EXPECT_STREQ(AppInfo::app(/*emptyIfUnset=*/true), "");
    EXPECT_STREQ(AppInfo::company(true), "");
    EXPECT_STREQ(AppInfo::group(true), "");
    EXPECT_STREQ(AppInfo::pathComp(true), "");
    EXPECT_DEATH(AppInfo::app(), "emptyIfUnset \\|\\| app");
    EXPECT_DEATH(AppInfo::company(), "emptyIfUnset \\|\\| company");
    EXPECT_DEATH(AppInfo::group(), "emptyIfUnset \\|\\| group");
    EXPECT_DEATH(AppInfo::pathComp(), "emptyIfUnset \\|\\| pathComp");
    AppInfo::setGroup("");
    EXPECT_STREQ(AppInfo::group(), "") << "set, though empty";
}

TEST_F(AppInfoTest, SharedFilesAreLookedForFromTheSharedDirUpwards) {
    AppInfo::setPathComp("zef");
    AppInfo::setExecutableDir("/opt/velthar/bin");
    AppInfo::setSharedDir("/etc/zef");
    const std::vector<std::string> all{"/etc/zef", "/opt/velthar/bin/zef", "/opt/velthar/bin/share/zef",
                                       "/opt/velthar/share/zef", "/opt/share/zef"};
    EXPECT_EQ(dirs(), all);
    AppInfo::setSharedDir("");
    AppInfo::setExecutableDir("/bin");
    EXPECT_EQ(dirs(), (std::vector<std::string>{"/bin/zef", "/bin/share/zef", "/share/zef"})) << "no parent above /";
    AppInfo::setExecutableDir("/");
    EXPECT_EQ(dirs(), (std::vector<std::string>{"/zef", "/share/zef"}));
}

TEST_F(AppInfoTest, TheFirstFileOfTheListIsFound) {
    const plat::TempDir dir;
    plat::mkDirs((dir / "bin/zef").c_str());
    plat::mkDirs((dir / "share/zef").c_str());
    std::ofstream(dir / "share/zef/table") << "far";
    AppInfo::setPathComp("zef");
    AppInfo::setExecutableDir((dir / "bin").c_str());
    EXPECT_EQ(dir / "share/zef/table", SharedConfigDirs::find("table").c_str());
    std::ofstream(dir / "bin/zef/table") << "near";
    EXPECT_EQ(dir / "bin/zef/table", SharedConfigDirs::find("table").c_str());
    EXPECT_TRUE(SharedConfigDirs::find("missing").isNull());
}

} // namespace
} // namespace os

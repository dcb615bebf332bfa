#include "hxutil/ConfigStoreFile.h"

#include "os/AppInfo.h"
#include "plat/ConfigParameter.h"
#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "plat/test/TempDir.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

namespace hxutil {
namespace {

class ConfigStoreFileTest : public ::testing::Test {
protected:
    void SetUp() override {
        os::AppInfo::reset();
        os::AppInfo::setApp("app");
        os::AppInfo::setPathComp("zef");
        os::AppInfo::setExecutableDir((root + "/bin").c_str());
        os::AppInfo::setSharedDir((root + "/etc").c_str());
        os::AppInfo::setConfigDir((root + "/home").c_str());
    }
    void TearDown() override { os::AppInfo::reset(); }
    void write(const std::string& file, const std::string& text) const {
        const std::filesystem::path path = root + "/" + file;
        std::filesystem::create_directories(path.parent_path());
        plat::writeTextFile(path, text);
    }
    std::string read(const std::string& file) const { return plat::readTextFile(dir / file); }

    plat::TempDir dir;
    const std::string& root = dir.root;
    plat::Configuration config{"Test"};
    plat::StringParameter name{"Name", "a name", "default", false, &config};
    plat::IntParameter size{"Size", "a size", 1, false, &config};
};

TEST_F(ConfigStoreFileTest, TheNearerFileWinsAndPolicyBeatsAll) {
    for (const char* file :
         {"bin/zef/config.d/common", "bin/zef/config.d/common.custom", "bin/zef/config.d/app", "etc/config.d/common",
          "etc/config.d/common.custom", "etc/config.d/app", "home/config.d/common", "home/config.d/app"}) {
        write(file, std::string("Name=") + file + "\n");
        ConfigStoreFile().load(/*withPolicy=*/true, &config);
        EXPECT_STREQ(name.c_str(), file);
        EXPECT_EQ(name.getPriority(), 10);
    }
    for (const char* file : {"bin/zef/policy.d/app", "etc/policy.d/common", "etc/policy.d/app"}) {
        write(file, std::string("Name=") + file + "\n");
        ConfigStoreFile().load(/*withPolicy=*/true, &config);
        EXPECT_STREQ(name.c_str(), file);
        EXPECT_EQ(name.getPriority(), 30);
    }
    name.unset(30);
    EXPECT_STREQ(name.c_str(), "home/config.d/app");
}

TEST_F(ConfigStoreFileTest, SavesWhatDiffersAndKeepsStrangersLines) {
    write("home/config.d/app", "Other=kept\nName=old\n");
    ConfigStoreFile store;
    const plat::Configuration defaults(config);
    name.setParam("new");
    store.save(&config, const_cast<plat::Configuration*>(&defaults));
    EXPECT_EQ(read("home/config.d/app"), "Name=new\nOther=kept\n");
    size.setInt(7);
    store.saveParam(&size);
    store.removeParam(&name);
    EXPECT_EQ(read("home/config.d/app"), "Other=kept\nSize=7\n");
    struct stat status {};
    ASSERT_EQ(stat((root + "/home/config.d/app").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    EXPECT_TRUE(store.exists());
}

TEST_F(ConfigStoreFileTest, PassesOnWhatIsThereButCannotBeRead) {
    write("home/config.d/app/folder", "");
    ConfigStoreFile store;
    EXPECT_THROW(store.load(/*withPolicy=*/true, &config), plat::Exception);
    EXPECT_STREQ(name.c_str(), "default");
}

} // namespace
} // namespace hxutil

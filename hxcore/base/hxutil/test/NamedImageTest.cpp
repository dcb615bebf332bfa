#include "hxutil/NamedImagePixelBuffer.h"

#include "fakes.h"
#include "hxutil/NamedImageFinder.h"
#include "hxutil/NamedImageLoader.h"
#include "plat/SysColors.h"
#include "plat/builtInResource.h"
#include "plat/test/CapturedLog.h"
#include "registerBuiltInResources.h"

#include <gtest/gtest.h>

#include <iterator>
#include <map>
#include <sstream>

using hxutil::NamedImagePixelBuffer;
using hxutil::test::WithParameter;
using rfb::Point;

namespace {

/// A table of names and sizes instead of files.
class FakeFinder : public hxutil::NamedImageFinder {
public:
    explicit FakeFinder(std::map<std::string, Point> files_) : files(std::move(files_)) {}

    bool tryName(const char* name) override {
        const auto i = files.find(name);
        if (i == files.end())
            return false;
        found = name;
        size = i->second;
        return true;
    }
    Point foundSize() const override { return size; }
    bool hasImage() const override { return !found.empty(); }

    std::string found;

private:
    std::map<std::string, Point> files;
    Point size;
};

/// "name wxh" of what is found, or the words of the failure.
std::string outcome(const std::map<std::string, Point>& files, Point size) {
    FakeFinder finder(files);
    try {
        finder.find("im", &size);
    } catch (const plat::Exception& e) {
        return e.what();
    }
    return finder.found + " " + std::to_string(size.x) + "x" + std::to_string(size.y);
}

TEST(NamedImageFinder, NaturalSizes) {
    EXPECT_EQ(outcome({{"im", {20, 10}}}, {}), "im 20x10");
    EXPECT_EQ(outcome({{"im@2x", {41, 20}}}, {}), "im@2x 21x10");
    EXPECT_EQ(outcome({{"im", {20, 10}}, {"im@2x", {40, 20}}}, {}), "im 20x10");
    EXPECT_EQ(outcome({{"im@2x", {40, 20}}, {"im20x10", {20, 10}}}, {}), "im20x10 20x10");
    EXPECT_EQ(outcome({}, {}), "Bad image name 'im'");

    const WithParameter ppmm("ppmm", "8");
    EXPECT_EQ(outcome({{"im@2x", {41, 20}}}, {}), "im@2x 41x20");
    EXPECT_EQ(outcome({{"im", {20, 10}}}, {}), "im 40x20") << "enlarged, there being no better one";
    EXPECT_EQ(outcome({{"im", {20, 10}}, {"im@2x", {40, 20}}}, {}), "im@2x 40x20");
    EXPECT_EQ(outcome({{"im", {20, 10}}, {"im@2x", {42, 20}}}, {}), "Badly sized image 'im': @2x/@1x images differ");
}

TEST(NamedImageFinder, SizesAskedFor) {
    EXPECT_EQ(outcome({{"im", {20, 10}}, {"im@2x", {40, 20}}}, {20, 10}), "im 20x10");
    EXPECT_EQ(outcome({{"im", {20, 10}}, {"im@2x", {40, 20}}}, {12, 6}), "im 12x6");
    EXPECT_EQ(outcome({{"im", {20, 10}}, {"im@2x", {40, 20}}}, {21, 10}), "im@2x 21x10");
    EXPECT_EQ(outcome({{"im", {20, 10}}}, {50, 25}), "im 50x25");
    EXPECT_EQ(outcome({{"im", {20, 10}}, {"im12x6", {12, 6}}}, {12, 6}), "im12x6 12x6");
    EXPECT_EQ(outcome({{"im12x6", {12, 7}}}, {12, 6}), "Badly sized image 'im12x6'");
    EXPECT_EQ(outcome({{"other", {1, 1}}}, {12, 6}), "Bad image name 'im'");
}

TEST(NamedImagePixelBuffer, LoadsScalesAndKeeps) {
    registerBuiltInResources();
    const auto natural = NamedImagePixelBuffer::get("sdOkay");
    EXPECT_EQ(natural->size(), Point(32, 32)) << "half of the @2x at ppmm 4";
    EXPECT_TRUE(natural->getPf().equal(rfb::pfARGB8888()));
    EXPECT_EQ(natural.get(), NamedImagePixelBuffer::get("sdOkay").get());
    EXPECT_EQ(natural.get(), NamedImagePixelBuffer::get("sdOkay", {32, 32}).get());
    EXPECT_EQ(NamedImagePixelBuffer::get("sdOkay", {64, 64})->size(), Point(64, 64));
    const WithParameter ppmm("ppmm", "8");
    EXPECT_EQ(NamedImagePixelBuffer::get("sdOkay")->size(), Point(64, 64)) << "not what was natural before";
    EXPECT_EQ(NamedImagePixelBuffer::get("zefserver", {48, 48})->size(), Point(48, 48));
}

TEST(NamedImagePixelBuffer, MissingImagesAreEmptyAndLoggedOnce) {
    plat::CapturedLog log;
    EXPECT_TRUE(NamedImagePixelBuffer::getQuiet("missingQuiet")->isEmpty());
    EXPECT_TRUE(log.lines.empty());
    EXPECT_TRUE(NamedImagePixelBuffer::get("missing", {8, 8})->isEmpty());
    EXPECT_TRUE(NamedImagePixelBuffer::get("missing", {8, 8})->isEmpty());
    EXPECT_EQ(log.lines, std::vector<std::string>{"0 NamedImage: Bad image name 'missing'"});
    EXPECT_TRUE(NamedImagePixelBuffer::get(nullptr)->isEmpty());
    EXPECT_TRUE(NamedImagePixelBuffer::get("sdOkay", {8, 0})->isEmpty());
    static const char junk[] = "no image at all";
    plat::addBuiltInResource("junk.png", sizeof junk, junk);
    log.lines.clear();
    EXPECT_TRUE(NamedImagePixelBuffer::get("junk")->isEmpty());
    EXPECT_EQ(log.count("0 NamedImage: junk.png: "), 1);
    // Two forms that don't fit each other are told even where nothing else would be.
    registerBuiltInResources();
    for (const auto& [odd, real] : {std::pair("odd.png", "zefserver.png"), std::pair("odd@2x.png", "sdOkay@2x.png")}) {
        const plat::BuiltInResource resource = plat::findBuiltInResource(real);
        plat::addBuiltInResource(odd, resource.size, resource.data);
    }
    const WithParameter ppmm("ppmm", "8");
    log.lines.clear();
    EXPECT_TRUE(NamedImagePixelBuffer::getQuiet("odd")->isEmpty());
    EXPECT_EQ(log.lines, std::vector<std::string>{"0 NamedImage: Badly sized image 'odd': @2x/@1x images differ"});
}

class DarkColours : public plat::SysColors {
public:
    DarkColours() {
        plat::setSysColors(nullptr);
        plat::setSysColors(this);
    }
    ~DarkColours() override { plat::setSysColors(nullptr); }
    bool getColor(const char*, uint32_t*) override { return false; }
    bool isDark() override { return true; }
};

TEST(NamedImagePixelBuffer, TakesTheDarkFormWhereThereIsOne) {
    registerBuiltInResources();
    plat::CapturedLog log;
    const auto plain = NamedImagePixelBuffer::get("sdUser");
    EXPECT_EQ(NamedImagePixelBuffer::getThemed("sdUser").get(), plain.get());
    const DarkColours dark;
    EXPECT_EQ(NamedImagePixelBuffer::getThemed("sdUser").get(), NamedImagePixelBuffer::get("sdUser_darkbg").get());
    EXPECT_EQ(NamedImagePixelBuffer::getThemed("sdOkay").get(), NamedImagePixelBuffer::get("sdOkay").get());
    EXPECT_TRUE(log.lines.empty()) << "silently";
}

std::vector<std::string> words(const std::string& text) {
    std::istringstream in(text);
    return {std::istream_iterator<std::string>(in), {}};
}

// Every picture that the program names, at both densities.
TEST(BuiltInImages, AllAreThereAndDecode) {
    registerBuiltInResources();
    const std::string doubled =
        "downArrow rightArrow sdError sdError_hover sdOkay sdOkay_hover sdUser sdUser_hover sdWarning sdWarning_hover "
        "sdHamburger sdHamburger_hover sdAuth sdConn sdIdCheck ZEFConnectLogo sdAuth_darkbg sdConn_darkbg "
        "sdUser_darkbg sdHamburger_darkbg sdIdCheck_darkbg security permissions connections privacy troubleshooting "
        "printing updatenotification expert user group global guest noguest accept deny prompt entryup entrydown "
        "connections_darkbg user_darkbg privacy_darkbg badge1 badge2 badge3 badge4 badge5 badge6 badge7 badge8 badge9 "
        "badge9plus filedlg_file filedlg_folder filedlg_folder_noaccess infoframe_success infoframe_warning "
        "infoframe_error infoframe_locked infoframe_notify infoframe_preference infoframe_default statusError "
        "statusWarning statusInfo statusQuestion statusPrivate bannerStatusQuestion screenRecord connectionGraphic "
        "shield WCheck_check WCheck_dot";
    const std::string plain =
        "zefserver zefserverConnected FTClose FTCloseActive FTPause FTPauseActive FTPlay FTPlayActive FTRetry "
        "FTRetryActive FTFiles FTFail FTFileUNIX FTFolderUNIX pl_confirmed pl_unconfirmed pl_logo";
    std::vector<std::string> names = words(plain);
    for (int i = 0; i < 12; ++i)
        for (const char* series : {"spinner", "spinnerblack"})
            names.push_back(std::string(series) + (i < 10 ? "0" : "") + std::to_string(i));
    for (const std::string& name : names)
        EXPECT_GT(plat::findBuiltInResource((name + ".png").c_str()).size, 0U) << name;
    for (const std::string& name : words(doubled)) {
        EXPECT_GT(plat::findBuiltInResource((name + "@2x.png").c_str()).size, 0U) << name;
        names.push_back(name);
    }
    for (const char* ppmm : {"4", "8"}) {
        const WithParameter density("ppmm", ppmm);
        for (const std::string& name : names)
            EXPECT_FALSE(NamedImagePixelBuffer::get(name.c_str())->isEmpty()) << name;
        for (const char* exact : {"sdConn", "sdAuth", "sdIdCheck", "sdConn_darkbg"})
            EXPECT_EQ(NamedImagePixelBuffer::get(exact, {31, 31})->size(), Point(31, 31));
    }
}

} // namespace

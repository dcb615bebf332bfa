#include "sui/StatusDialogModel.h"

#include "score/StatusDb.h"
#include "score/StatusEvent.h"
#include "sui/TextStyle.h"

#include <gtest/gtest.h>

namespace sui {
namespace {

class Tree {
public:
    void put(const char* path, const char* text = nullptr, const char* key = "text") {
        const std::string whole(path);
        for (size_t slash = whole.find('/'); slash != std::string::npos; slash = whole.find('/', slash + 1))
            info.beginWrite(whole.substr(0, slash).c_str(), 0, nullptr, /*replace=*/false);
        const score::StatusDbTxn txn = info.beginWrite(path, 0, nullptr, /*replace=*/false);
        if (text)
            txn->setData(key, text);
    }
    StatusDialogModel model(uint32_t connections = 0) const {
        return StatusDialogModel::from(info, events, connections);
    }

    score::StatusDb info{"Info"};
    score::StatusEventDb events;
};

TEST(StatusDialogModel, IsTheDefaultOneForAnEmptyTree) {
    const Tree tree;
    EXPECT_TRUE(tree.model() == StatusDialogModel());
    EXPECT_STREQ(tree.model().banner.c_str(), "Velthar Server");
}

TEST(StatusDialogModel, ReadsEveryNode) {
    Tree tree;
    tree.put("Dlg/Banner", "Company Server");
    tree.put("Dlg/Banner/HasMode");
    tree.put("Dlg/Banner/EditionBadge", "badge1");
    tree.put("Dlg/Conn/first", "192.168.4.17");
    tree.put("Dlg/Conn/first", "<b>in</b>", "detailHtml");
    tree.put("Dlg/Conn/second", "not shown");
    tree.put("Dlg/ConnOther/0", "one");
    tree.put("Dlg/ConnOther/1"); // without a text
    tree.put("Dlg/ConnOther/2", "two");
    tree.put("Dlg/PinLink");
    tree.put("Dlg/Signature", "2c-7f");
    tree.put("Dlg/Catchphrase", "");
    tree.put("Dlg/Authentication", "ZefAuth");
    tree.put("Dlg/CanChangePassword");
    tree.put("Dlg/FooterHtml", "<b>trial</b>");
    score::StatusEvent event;
    event.id = "e";
    event.severity = 2;
    tree.events.write(nullptr, event);

    const StatusDialogModel model = tree.model(3);
    EXPECT_STREQ(model.banner.c_str(), "Company Server");
    EXPECT_TRUE(model.hasMode && model.hasPinLink && model.canChangePassword);
    EXPECT_STREQ(model.editionBadge.c_str(), "badge1");
    EXPECT_STREQ(model.connText.c_str(), "192.168.4.17");
    EXPECT_STREQ(model.connDetailHtml.c_str(), "<b>in</b>");
    ASSERT_EQ(model.otherWays.size(), 2U);
    EXPECT_STREQ(model.otherWays[1].c_str(), "two");
    EXPECT_FALSE(model.catchphrase.isNull());
    EXPECT_STREQ(model.footerHtml.c_str(), "<b>trial</b>");
    EXPECT_EQ(model.severity, 2U);
    EXPECT_EQ(model.eventCount, 1U);
    EXPECT_EQ(model.connections, 3U);
}

TEST(StatusDialogModel, TellsEveryDifferenceAndNullFromEmpty) {
    const auto differs = [](auto change) {
        Tree tree;
        tree.put("Dlg/Signature", "");
        const StatusDialogModel before = tree.model();
        EXPECT_TRUE(tree.model() == before);
        change(tree);
        return !(tree.model() == before);
    };
    for (const char* path : {"Dlg/Banner/HasMode", "Dlg/PinLink", "Dlg/CanChangePassword"})
        EXPECT_TRUE(differs([path](Tree& t) { t.put(path); })) << path;
    for (const char* path : {"Dlg/Banner", "Dlg/Banner/EditionBadge", "Dlg/Conn/x", "Dlg/ConnOther/x", "Dlg/Signature",
                             "Dlg/Catchphrase", "Dlg/Authentication", "Dlg/FooterHtml"})
        EXPECT_TRUE(differs([path](Tree& t) { t.put(path, "changed"); })) << path;
    EXPECT_TRUE(differs([](Tree& t) { t.info.remove("Dlg/Signature", nullptr); }));
    EXPECT_TRUE(differs([](Tree& t) { t.put("Dlg/Catchphrase", ""); }));
    EXPECT_FALSE(differs([](Tree& t) { t.put("Dlg/Unknown", "x"); }));
    EXPECT_FALSE(StatusDialogModel::from(Tree().info, Tree().events, 1) == StatusDialogModel());
}

TEST(TextStyle, WritesItsCss) {
    EXPECT_STREQ(TextStyle{}.css().c_str(), "font-size:100%;font-weight:400;");
    const TextStyle all{140, 700, TextStyle::Italic | TextStyle::Underline, "contentText", "#ffffff"};
    EXPECT_STREQ(all.css().c_str(), "font-size:117%;font-weight:700;font-style:italic;text-decoration:underline;"
                                    "color:contentText;background-color:#ffffff;");
}

TEST(TextStyle, EscapesWhatComesFromOutside) {
    EXPECT_STREQ(escapedText("a<b>&\x01\x7f\xe2\x80\xae"
                             "c")
                     .c_str(),
                 "a&lt;b&gt;&amp;c");
    EXPECT_STREQ(escapedText(nullptr).c_str(), "");
}

TEST(TextStyle, ColoursLinksThatStateNoLookOfTheirOwn) {
    const plat::String html =
        styledHtml(TextStyle{}, "x <a href=\"u\">y</a> <a style=\"color:red\" href=\"v\">z</a><abc", "#66a7e8");
    EXPECT_STREQ(html.c_str(), "<div style=\"font-size:100%;font-weight:400;\">x "
                               "<a style=\"text-decoration:underline;color:#66a7e8\" href=\"u\">y</a> "
                               "<a style=\"color:red\" href=\"v\">z</a><abc</div>");
}

} // namespace
} // namespace sui

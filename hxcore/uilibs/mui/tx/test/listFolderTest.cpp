#include "mui/tx/listFolder.h"

#include "plat/Exception.h"
#include "plat/test/TempDir.h"

#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string names(const std::string& dir, const mui::FolderFilter& filter) {
    std::string all;
    for (const mui::FolderEntry& entry : mui::listFolder(dir.c_str(), filter))
        all += std::string(entry.name.c_str()) + (entry.isDir ? "/ " : " ");
    return all;
}

TEST(ListFolder, FoldersStandFirstAndTheFilterCounts) {
    const plat::TempDir dir;
    for (const char* name : {"b.PNG", "a.txt", "Z.png", ".hidden.png", "\xff.png", "png"})
        plat::writeTextFile(dir / name, "four");
    for (const char* name : {"zoo", ".secret", "Alpha"})
        mkdir((dir / name).c_str(), 0700);
    EXPECT_EQ(symlink("zoo", (dir / "link").c_str()), 0);
    EXPECT_EQ(symlink("nowhere", (dir / "dangling").c_str()), 0);
    EXPECT_EQ(symlink("round", (dir / "round").c_str()), 0);
    EXPECT_EQ(names(dir.root, {}), "Alpha/ link/ zoo/ Z.png a.txt b.PNG dangling png round ");
    EXPECT_EQ(names(dir.root, {false, {".png"}}), "Alpha/ link/ zoo/ Z.png b.PNG ");
    EXPECT_EQ(names(dir.root, {true, {".png", ".txt"}}),
              "../ .secret/ Alpha/ link/ zoo/ .hidden.png Z.png a.txt b.PNG ");
    for (const mui::FolderEntry& entry : mui::listFolder(dir.root.c_str(), {})) {
        const bool leadsNowhere = entry.name == "dangling" || entry.name == "round";
        EXPECT_EQ(entry.size, entry.isDir || leadsNowhere ? 0U : 4U) << entry.name.c_str();
        EXPECT_GT(entry.modified, 0) << entry.name.c_str(); // of the link itself
    }
}

TEST(ListFolder, TellsWhatItCannotRead) {
    const plat::TempDir dir;
    EXPECT_THROW(mui::listFolder((dir / "none").c_str(), {}), plat::SystemException);
    mkdir((dir / "closed").c_str(), 0);
    const auto entries = mui::listFolder(dir.root.c_str(), {});
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_TRUE(entries[0].isDir);
    EXPECT_EQ(entries[0].accessible, geteuid() == 0); // root may read everything
}

} // namespace

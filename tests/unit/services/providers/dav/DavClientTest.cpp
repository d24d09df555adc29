#include "services/providers/dav/DavClient.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/unit/services/providers/dav/DavFixture.h"

namespace providers {
namespace {

// Each is a legal name of a file on Windows.
const std::wstring kOddNames[] = {
    L"plain.zip",
    L"with blank.zip",
    L"100% & more #1;a=b@c+d,e!$'()[]{}^`~.zip",
    L"\u00E4\u00F6\u00DF \u20AC.zip",
    L"\u65E5\u672C\u8A9E.zip",
    L"\U0001F600.zip",
    L"%41%2F.zip",
};

class DavClientTest : public DavAccount {
protected:
    void DiscardFolder(std::string_view name) const {
        HttpUrl url = Url(name);
        url.path += '/';
        EXPECT_EQ("done", Outcome(client_.Discard(url)));
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, DavClientTest, testing::Values("apache", "sabre"));

TEST_P(DavClientTest, ListsFilesAndFoldersWithOddNames) {
    std::vector<std::wstring> wanted{L"folder & more"};
    for (const std::wstring& name : kOddNames) {
        ASSERT_EQ("done", Put(ToUtf8(name), "12345"));
        wanted.push_back(name);
    }
    ASSERT_EQ("done", Outcome(client_.MakeFolders(root_, {"folder & more"})));
    const auto result = client_.List(root_);
    ASSERT_EQ("done", Outcome(result));
    std::vector<std::wstring> names;
    for (const DavItem& item : std::get<0>(result)) {
        if (item.name.starts_with(L".")) continue; // the server's own
        names.push_back(item.name);
        EXPECT_EQ(item.name.starts_with(L"folder"), item.isFolder);
        if (item.isFolder) continue;
        EXPECT_EQ(5u, item.size);
        EXPECT_FALSE(item.version.empty());
        const auto again = client_.Look(item.url);
        ASSERT_EQ("done", Outcome(again)) << HttpUrlText(item.url);
        EXPECT_EQ(5u, std::get<DavItem>(again).size);
    }
    std::sort(names.begin(), names.end());
    std::sort(wanted.begin(), wanted.end());
    EXPECT_EQ(wanted, names);
    DiscardFolder("folder & more");
}

TEST_P(DavClientTest, LooksAtAFolderByEitherForm) {
    HttpUrl url = root_;
    for (const char* path : {"/dav/", "/dav"}) {
        url.path = path;
        const auto result = client_.Look(url);
        ASSERT_EQ("done", Outcome(result)) << path;
        EXPECT_TRUE(std::get<DavItem>(result).isFolder);
        EXPECT_EQ(!IsApache(), std::get<DavItem>(result).freeBytes.has_value());
    }
    EXPECT_EQ(Outcome(DavFault::NotFound, 404), Outcome(client_.Look(Url("none"))));
}

// Such a file is found by its address. A folder is by its name, so it is left out.
TEST_P(DavClientTest, ListsFilesWhoseNamesAreNotUtf8) {
    const auto entry = [](const char* href, const char* type) {
        return std::string("<response><href>") + href + "</href><propstat><prop><resourcetype>" +
               type + "</resourcetype></prop></propstat></response>";
    };
    const std::string reply = "status 207|=<multistatus xmlns='DAV:'>" +
                              entry("/dav/", "<collection/>") + entry("/dav/%E4.txt", "") +
                              entry("/dav/%E4/", "<collection/>") + "</multistatus>";
    relay_.On("PROPFIND", reply.c_str());
    const auto listed = client_.List(root_);
    ASSERT_EQ("done", Outcome(listed));
    const auto& items = std::get<0>(listed);
    ASSERT_EQ(1u, items.size());
    EXPECT_EQ(L"\uFFFD.txt", items[0].name);
    EXPECT_EQ("/dav/%E4.txt", items[0].url.path);
}

TEST_P(DavClientTest, MakesAChainOfFoldersAndTakesThoseThatAreThere) {
    for (int times = 0; times < 2; ++times) {
        const auto made = client_.MakeFolders(root_, {"a b", "\xC3\xA4", "c"});
        ASSERT_EQ("done", Outcome(made));
        EXPECT_EQ("/dav/a%20b/%C3%A4/c/", std::get<HttpUrl>(made).path);
    }
    EXPECT_TRUE(obtest::FileExists(FilesOf(Server()) + L"\\a b\\\u00E4\\c"));
    ASSERT_EQ("done", Put("file", "x"));
    EXPECT_EQ(Outcome(DavFault::InTheWay, 0), Outcome(client_.MakeFolders(root_, {"file"})));
    EXPECT_EQ("x", Stored(L"file"));
    DiscardFolder("a b");
}

TEST_P(DavClientTest, MakesAFolderOnceWhenTheReplyIsLost) {
    relay_.On("MKCOL", "swallow");
    EXPECT_EQ("done", Outcome(client_.MakeFolders(root_, {"lost"})));
    EXPECT_EQ("PROPFIND MKCOL PROPFIND", relay_.Methods());
    relay_.On("MKCOL", "refuse");
    EXPECT_EQ("done", Outcome(client_.MakeFolders(root_, {"lost", "again"})));
    EXPECT_TRUE(obtest::FileExists(FilesOf(Server()) + L"\\lost\\again"));
    DiscardFolder("lost");
}

TEST_P(DavClientTest, MovesAFileAndReplacesNone) {
    ASSERT_EQ("done", Put("from", "new"));
    ASSERT_EQ("done", Put("taken", "old"));
    EXPECT_EQ(Outcome(DavFault::Taken, 412), Outcome(client_.Move(Url("from"), Url("taken"), 3)));
    EXPECT_EQ("old", Stored(L"taken"));
    EXPECT_EQ("new", Stored(L"from"));
    EXPECT_EQ("done", Outcome(client_.Move(Url("from"), Url("to % \xC3\xA4"), 3)));
    EXPECT_EQ("new", Stored(L"to % \u00E4"));
    EXPECT_EQ("none", Stored(L"from"));
}

TEST_P(DavClientTest, LooksUpAMoveWhoseReplyIsLost) {
    ASSERT_EQ("done", Put("from", "new"));
    relay_.On("MOVE", "swallow");
    EXPECT_EQ("done", Outcome(client_.Move(Url("from"), Url("to"), 3)));
    EXPECT_EQ("PUT MOVE PROPFIND PROPFIND", relay_.Methods());
    EXPECT_EQ("new", Stored(L"to"));

    ASSERT_EQ("done", Put("from", "other"));
    relay_.On("MOVE", "refuse");
    EXPECT_EQ(Outcome(DavFault::Taken, 412), Outcome(client_.Move(Url("from"), Url("to"), 5)));
    EXPECT_EQ("new", Stored(L"to"));
    EXPECT_EQ("other", Stored(L"from"));
}

TEST_P(DavClientTest, KnowsItsOwnMoveThatWasDoneTwice) {
    ASSERT_EQ("done", Put("from", "new"));
    relay_.On("MOVE", "twice");
    EXPECT_EQ("done", Outcome(client_.Move(Url("from"), Url("to"), 3)));
    EXPECT_EQ("new", Stored(L"to"));
    // The name is taken by something else.
    EXPECT_EQ("done", Put("from", "other"));
    relay_.On("MOVE", "twice");
    EXPECT_EQ(Outcome(DavFault::Taken, 412), Outcome(client_.Move(Url("from"), Url("to"), 5)));
    EXPECT_EQ("other", Stored(L"from"));
}

TEST_P(DavClientTest, DeletesAFileThatIsUnchanged) {
    ASSERT_EQ("done", Put("file", "one"));
    const std::string version = Version("file");
    EXPECT_EQ(DavDeletion::Changed, std::get<0>(client_.Delete(Url("file"), "\"other\"")));
    EXPECT_EQ(DavDeletion::Changed, std::get<0>(client_.Delete(Url("file"), "")));
    EXPECT_EQ("one", Stored(L"file"));
    EXPECT_EQ(DavDeletion::Gone, std::get<0>(client_.Delete(Url("file"), version)));
    EXPECT_EQ("none", Stored(L"file"));
    EXPECT_EQ(DavDeletion::Gone, std::get<0>(client_.Delete(Url("file"), version)));
}

TEST_P(DavClientTest, TakesAReplyOfSeveralEndsForAFailure) {
    ASSERT_EQ("done", Put("file", "one"));
    const std::string version = Version("file");
    relay_.On("DELETE", "status 207|=<x/>", 0, 2);
    EXPECT_EQ(Outcome(DavFault::ServerFailed, 207), Outcome(client_.Delete(Url("file"), version)));
    EXPECT_EQ(Outcome(DavFault::ServerFailed, 207), Outcome(client_.Discard(Url("file"))));
    EXPECT_EQ("one", Stored(L"file"));
    EXPECT_EQ(DavDeletion::Gone, std::get<0>(client_.Delete(Url("file"), version)));
}

// As of a server between that waits no longer for the one with the files.
TEST_P(DavClientTest, LooksUpWhatAServerBetweenReportsAsFailed) {
    for (const char* reply : {"instead 408", "instead 500", "instead 502", "instead 504"}) {
        ASSERT_EQ("done", Put("from", "new"));
        relay_.On("MOVE", reply);
        EXPECT_EQ("done", Outcome(client_.Move(Url("from"), Url("to"), 3))) << reply;
        EXPECT_EQ("new", Stored(L"to"));
        EXPECT_EQ("done", Outcome(client_.Discard(Url("to"))));
    }
    ASSERT_EQ("done", Put("from", "new"));
    relay_.Begin(GetParam());
    relay_.On("MOVE", "status 504");
    EXPECT_EQ(Outcome(DavFault::ServerFailed, 504),
              Outcome(client_.Move(Url("from"), Url("to"), 3)));
    EXPECT_EQ("MOVE PROPFIND PROPFIND PROPFIND PROPFIND PROPFIND", relay_.Methods())
        << "a move that wasn't made isn't made again";
    EXPECT_EQ("new", Stored(L"from"));
}

TEST_P(DavClientTest, KeepsAFileThatChangesInTheMiddleOfADeletion) {
    ASSERT_EQ("done", Put("file", "one"));
    const std::string version = Version("file");
    relay_.On("DELETE", "status 412");
    EXPECT_EQ(DavDeletion::Changed, std::get<0>(client_.Delete(Url("file"), version)));
    EXPECT_EQ("one", Stored(L"file"));
}

TEST_P(DavClientTest, KnowsWhetherPartsCanBePatched) {
    EXPECT_EQ(!IsApache(), std::get<bool>(client_.CanPatch(root_)));
}

} // namespace
} // namespace providers

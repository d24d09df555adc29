// The controls that answer for themselves, as another process is told of them.
#include <objbase.h>

#include <algorithm>

#include "tests/support/AccessibleTree.h"
#include "tests/support/Utf8.h"
#include "tests/ui/gallery/GalleryFixture.h"

namespace obtest {
namespace {

class AccessibleGallery : public GalleryFixture {
protected:
    explicit AccessibleGallery(const wchar_t* page) : GalleryFixture(page) {}
    void SetUp() override {
        GalleryFixture::SetUp();
        ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    }
    void TearDown() override {
        CoUninitialize();
        GalleryFixture::TearDown();
    }
    // The lines of the controls that fit.
    template <class Fits>
    std::vector<std::string> Lines(Fits fits) const {
        std::vector<std::string> lines;
        for (const AccessibleNode& node : AccessibleNodes(page_)) {
            if (fits(node)) lines.push_back(Utf8(Line(node)));
        }
        return lines;
    }
};

class AccessibleBars : public AccessibleGallery {
protected:
    AccessibleBars() : AccessibleGallery(L"bars") {}
};

TEST_F(AccessibleBars, ReportValueRangeAndTheLabelBefore) {
    const auto lines = Lines([](const AccessibleNode& node) {
        return node.id == OB_GALLERY_SLIDER || node.id == OB_GALLERY_ACROSS;
    });
    EXPECT_EQ((std::vector<std::string>{
                  R"(6003  scroll bar "Bar:"; is focusable; value 30; range 0 - 99)",
                  R"(6011  slider "Slider:"; is focusable; value 40; range 0 - 100)"}),
              lines);
}

TEST_F(AccessibleBars, DescribeEveryControl) {
    const auto silent = Lines([](const AccessibleNode& node) { return node.role.empty(); });
    EXPECT_EQ((std::vector<std::string>{}), silent);
}

class AccessibleLinks : public AccessibleGallery {
protected:
    AccessibleLinks() : AccessibleGallery(L"links") {}
};

TEST_F(AccessibleLinks, HaveTheirTextsAndAnActionWhileEnabled) {
    const auto lines = Lines([](const AccessibleNode& node) {
        return node.id == OB_GALLERY_LINK_PLAIN || node.id == OB_GALLERY_LINK_OFF;
    });
    EXPECT_EQ(
        (std::vector<std::string>{R"(8001  link "About this program"; is focusable, linked; )"
                                  R"(action About this program)",
                                  R"(8003  link "Look for updates"; is unavailable, linked)"}),
        lines);
}

class AccessibleLists : public AccessibleGallery {
protected:
    AccessibleLists() : AccessibleGallery(L"lists") {}
};

TEST_F(AccessibleLists, ReportWhichRowsAreChecked) {
    const auto rows = [&](int id) {
        std::vector<bool> checked;
        for (const AccessibleNode& node : AccessibleNodes(page_)) {
            if (node.id != id) continue;
            for (const std::wstring& states : node.rows) {
                checked.push_back(states.find(L"checked") != std::wstring::npos);
            }
        }
        return checked;
    };
    EXPECT_EQ((std::vector<bool>{false, true}), rows(OB_GALLERY_LIST_CHECKS));
    EXPECT_EQ((std::vector<bool>{false, true}), rows(OB_GALLERY_LIST_OFF));
    EXPECT_EQ((std::vector<bool>{false, false, false}), rows(OB_GALLERY_LIST_PLAIN));
}

class AccessibleToggles : public AccessibleGallery {
protected:
    AccessibleToggles() : AccessibleGallery(L"toggles") {}
};

TEST_F(AccessibleToggles, ReportWhetherASwitchIsOn) {
    const auto lines = Lines([](const AccessibleNode& node) {
        return node.id == OB_GALLERY_SWITCH || node.id == OB_GALLERY_SWITCH + 3;
    });
    EXPECT_EQ(
        (std::vector<std::string>{
            R"(5040  check button "Off:"; is focusable; action Off:)",
            R"(5043  check button "On, disabled:"; is unavailable, checked; action On, disabled:)"}),
        lines);
}

class AccessibleTexts : public AccessibleGallery {
protected:
    AccessibleTexts() : AccessibleGallery(L"texts") {}
};

TEST_F(AccessibleTexts, NameEachEyeByWhatItDoes) {
    const auto lines =
        Lines([](const AccessibleNode& node) { return node.name == L"Show or hide the password"; });
    const std::string name = R"(0  push button "Show or hide the password"; is )";
    const std::string action = "focusable; action Show or hide the password";
    EXPECT_EQ((std::vector<std::string>{name + action, name + "pressed, " + action, name + action}),
              lines);
}

TEST_F(AccessibleTexts, KeepAPasswordToItself) {
    const auto lines =
        Lines([](const AccessibleNode& node) { return node.id == OB_GALLERY_PASSWORD_HIDDEN; });
    EXPECT_EQ((std::vector<std::string>{R"(2121  text "Hidden:"; is focusable, protected)"}),
              lines);
}

} // namespace
} // namespace obtest

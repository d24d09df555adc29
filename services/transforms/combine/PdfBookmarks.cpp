#include "services/transforms/combine/PdfBookmarks.h"

#include <set>
#include <utility>
#include <vector>

namespace transforms::combine {
namespace {

using namespace documents;
using Object = QPDFObjectHandle;

struct Next {
    Object item;
    Object parent; // of the target
    std::size_t depth;
};

} // namespace

PdfBookmarks::PdfBookmarks(QPDF& target)
    : target_(target), root_(target.makeIndirectObject(Object::parse("<</Type /Outlines>>"))) {}

// One after the other: a chain of bookmarks is as long as its file likes, and may form a loop.
Object PdfBookmarks::Copy(PdfCopier& copier, PdfDestinations& places, QPDF& source,
                          const std::string& title, const Object& page) {
    auto bookmark = target_.makeIndirectObject(Object::newDictionary());
    bookmark.replaceKey("/Title", Object::newUnicodeString(title));
    bookmark.replaceKey("/Dest", Object::newArray({page, Object::newName("/Fit")}));
    auto outlines = source.getRoot().getKey("/Outlines");
    if (!outlines.isDictionary()) return bookmark;
    std::set<QPDFObjGen> seen;
    std::vector<Next> open{{outlines.getKey("/First"), bookmark, 1}};
    while (!open.empty()) {
        auto [item, parent, depth] = std::move(open.back());
        open.pop_back();
        if (!item.isDictionary()) continue;
        if (item.isIndirect() && !seen.insert(item.getObjGen()).second) continue;
        if (depth > kDeepestTree) throw PdfRefusal(CleanOutcome::Damaged);
        auto copy = target_.makeIndirectObject(Object::newDictionary());
        for (const char* key : {"/Title", "/A", "/C", "/F"}) {
            if (item.hasKey(key)) copy.replaceKey(key, copier.Copy(item.getKey(key)));
        }
        if (item.hasKey("/Dest")) {
            copy.replaceKey("/Dest", copier.Copy(places.Place(item.getKey("/Dest"))));
        }
        AddBelow(parent, copy);
        open.push_back({item.getKey("/Next"), parent, depth});
        open.push_back({item.getKey("/First"), copy, depth + 1});
    }
    return bookmark;
}

void PdfBookmarks::Add(Object bookmark) { AddBelow(root_, std::move(bookmark)); }

// A negative count means that a bookmark is shown closed.
void PdfBookmarks::AddBelow(Object parent, Object item) {
    auto last = parent.getKey("/Last");
    item.replaceKey("/Parent", parent);
    if (last.isNull()) {
        parent.replaceKey("/First", item);
    } else {
        last.replaceKey("/Next", item);
        item.replaceKey("/Prev", last);
    }
    parent.replaceKey("/Last", item);
    auto count = parent.getKey("/Count");
    const long long before = count.isInteger() ? count.getIntValue() : 0;
    parent.replaceKey("/Count",
                      Object::newInteger(before + (parent.isSameObjectAs(root_) ? 1 : -1)));
}

} // namespace transforms::combine

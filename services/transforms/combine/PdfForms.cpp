#include "services/transforms/combine/PdfForms.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace transforms::combine {
namespace {

using namespace documents;
using Object = QPDFObjectHandle;

// The field without a parent to which a widget belongs. Throws PdfRefusal for a chain of parents
// that loops or is too long.
Object RootOf(Object field) {
    for (std::size_t depth = 0; depth < kDeepestTree; ++depth) {
        auto parent = field.getKey("/Parent");
        if (!parent.isDictionary()) return field;
        field = parent;
    }
    throw PdfRefusal(CleanOutcome::Damaged);
}

// The form's own list, and what it should list besides. Pages, their lists and widgets may be named
// any number of times, and are looked at once.
class RootList {
public:
    std::vector<Object> Take(Object form, const std::vector<PdfPage>& pages) {
        roots_ = DictionariesOf(form.getKey("/Fields"));
        for (const auto& root : roots_) known_.insert(root.getObjGen());
        for (const PdfPage& page : pages) {
            Object dictionary = page.page;
            if (!IsNew(dictionary)) continue;
            auto annotations = dictionary.getKey("/Annots");
            if (!IsNew(annotations)) continue;
            for (auto& annotation : DictionariesOf(annotations)) Add(annotation);
        }
        return std::move(roots_);
    }

private:
    bool IsNew(const Object& object) {
        return !object.isIndirect() || seen_.insert(object.getObjGen()).second;
    }
    void Add(Object& annotation) {
        if (!IsNew(annotation)) return;
        if (!annotation.getKey("/Subtype").isNameAndEquals("/Widget")) return;
        auto root = RootOf(annotation);
        const bool isField = root.hasKey("/T") || root.hasKey("/FT");
        if (isField && root.isIndirect() && known_.insert(root.getObjGen()).second) {
            roots_.push_back(root);
        }
    }

    std::vector<Object> roots_;
    std::set<QPDFObjGen> known_; // of the roots
    std::set<QPDFObjGen> seen_;
};

std::vector<Object> RootsOf(Object form, const std::vector<PdfPage>& pages) {
    return RootList().Take(std::move(form), pages);
}

bool IsDelimiter(char c) {
    return std::string_view(" \t\r\n\f/()<>[]{}%").find(c) != std::string_view::npos;
}

// An appearance with other names of fonts. The only names in one are those of resources.
std::string WithFonts(const std::string& appearance,
                      const std::map<std::string, std::string>& fonts) {
    std::string changed;
    for (std::size_t at = 0; at < appearance.size();) {
        std::size_t end = at + 1;
        while (end < appearance.size() && !IsDelimiter(appearance[end])) ++end;
        const std::string token = appearance.substr(at, end - at);
        const auto renamed = fonts.find(token);
        changed += renamed == fonts.end() ? token : renamed->second;
        at = end;
    }
    return changed;
}

void ChangeFonts(Object& field, const std::map<std::string, std::string>& fonts) {
    auto appearance = field.getKey("/DA");
    if (fonts.empty() || !appearance.isString()) return;
    field.replaceKey("/DA", Object::newString(WithFonts(appearance.getStringValue(), fonts)));
}

// Whether two objects of one file have the same content. False for streams, what is nested more
// deeply than a font that every reader has, and when the work becomes too much: objects may name
// each other so often that their tree has no end in practice.
class Comparison {
public:
    bool AreAlike(Object one, Object other, int depth = kDeepestFont) {
        if (--left_ < 0) return false;
        if (one.isSameObjectAs(other) && one.isIndirect()) return true;
        if (depth == 0 || one.getTypeCode() != other.getTypeCode() || one.isStream()) return false;
        if (one.isDictionary()) return HaveAlikeKeys(one, other, depth);
        if (one.isArray()) return HaveAlikeItems(one, other, depth);
        const std::string text = one.unparseResolved();
        left_ -= static_cast<std::int64_t>(text.size() / kTextOfOne);
        return text == other.unparseResolved();
    }

private:
    bool HaveAlikeKeys(Object& one, Object& other, int depth) {
        const auto keys = one.getKeys();
        left_ -= static_cast<std::int64_t>(keys.size()); // also where no value is compared
        return keys == other.getKeys() && std::ranges::all_of(keys, [&](const std::string& key) {
                   return AreAlike(one.getKey(key), other.getKey(key), depth - 1);
               });
    }
    bool HaveAlikeItems(Object& one, Object& other, int depth) {
        const int count = one.getArrayNItems();
        if (count != other.getArrayNItems()) return false;
        for (int item = 0; item < count; ++item) {
            const bool isAlike =
                AreAlike(one.getArrayItem(item), other.getArrayItem(item), depth - 1);
            if (!isAlike) return false;
        }
        return true;
    }

    static constexpr int kDeepestFont = 6;
    static constexpr std::size_t kTextOfOne = 64; // characters that count as one object
    // A font with its widths and glyph names has about 600.
    std::int64_t left_ = 200'000;
};

// The dictionary under the key, which is made where there is none.
Object Below(Object& dictionary, const std::string& key) {
    if (!dictionary.getKey(key).isDictionary()) {
        dictionary.replaceKey(key, Object::newDictionary());
    }
    return dictionary.getKey(key);
}

// A field's default, unless it has one of its own.
void SetDefault(Object& field, const char* key, const Object& value) {
    if (value.isInitialized() && !field.hasKey(key)) field.replaceKey(key, value);
}

} // namespace

PdfFormPart PdfForms::Copy(PdfCopier& copier, QPDF& source, const std::vector<PdfPage>& pages) {
    PdfFormPart part;
    auto form = source.getRoot().getKey("/AcroForm");
    if (!form.isDictionary()) return part;
    for (const auto& root : RootsOf(form, pages)) part.roots.push_back(copier.Copy(root));
    for (const auto& field : DictionariesOf(form.getKey("/CO"))) {
        part.orders.push_back(copier.Copy(field));
    }
    if (form.getKey("/DA").isString()) part.appearance = copier.Copy(form.getKey("/DA"));
    if (form.getKey("/Q").isInteger()) part.alignment = copier.Copy(form.getKey("/Q"));
    part.resources = copier.Copy(form.getKey("/DR"));
    auto needs = form.getKey("/NeedAppearances");
    part.needsAppearances = needs.isBool() && needs.getBoolValue();
    return part;
}

// Each field and each list of kids once, however they refer to each other.
std::vector<PdfForms::Field> PdfForms::FieldsOf(const std::vector<Object>& roots) const {
    struct Open {
        Object field;
        bool isNamed;
        std::size_t depth;
    };
    std::vector<Field> fields;
    std::vector<Open> open;
    std::set<QPDFObjGen> seen;
    const auto isNew = [&](const Object& object) {
        return !object.isIndirect() || seen.insert(object.getObjGen()).second;
    };
    for (const auto& root : roots) open.push_back({root, false, 0});
    while (!open.empty()) {
        auto [field, isNamed, depth] = std::move(open.back());
        open.pop_back();
        if (steps_) steps_->Step();
        if (!field.isDictionary() || !isNew(field)) continue;
        if (depth >= kDeepestTree) throw PdfRefusal(CleanOutcome::Damaged);
        const bool hasName = field.getKey("/T").isString();
        fields.push_back({field, hasName && !isNamed});
        const auto kids = field.getKey("/Kids");
        if (!isNew(kids)) continue;
        for (const auto& kid : DictionariesOf(kids)) {
            open.push_back({kid, isNamed || hasName, depth + 1});
        }
    }
    return fields;
}

std::set<std::string> PdfForms::FirstNamesOf(std::vector<Field>& fields) {
    std::set<std::string> names;
    for (Field& field : fields) {
        if (field.hasFirstName) names.insert(field.field.getKey("/T").getUTF8Value());
    }
    return names;
}

bool PdfForms::WillRename(QPDF& source, const std::vector<PdfPage>& pages) const {
    auto form = source.getRoot().getKey("/AcroForm");
    if (!form.isDictionary()) return false;
    auto fields = FieldsOf(RootsOf(form, pages));
    return std::ranges::any_of(FirstNamesOf(fields),
                               [&](const auto& name) { return names_.contains(name); });
}

// Two fields of one name are one field with one value: those of one part stay that, and those of
// different parts mustn't become it.
bool PdfForms::RenameFields(std::vector<Field>& fields) {
    const std::set<std::string> own = FirstNamesOf(fields);
    const auto nameOf = [](Field& field) { return field.field.getKey("/T").getUTF8Value(); };
    Renamed renamed;
    for (const std::string& name : own) {
        std::string unique = name;
        const auto isTaken = [&] {
            return names_.contains(unique) || (unique != name && own.contains(unique));
        };
        for (int number = 2; isTaken(); ++number) {
            unique = name + " (" + std::to_string(number) + ")";
        }
        names_.insert(unique);
        renamed[name] = unique;
    }
    bool hasRenamed = false;
    for (Field& field : fields) {
        if (!field.hasFirstName) continue;
        const std::string& name = renamed[nameOf(field)];
        if (name == nameOf(field)) continue;
        field.field.replaceKey("/T", Object::newUnicodeString(name));
        hasRenamed = true;
    }
    return hasRenamed;
}

// A font whose name another one has gets another name.
PdfForms::Renamed PdfForms::AddFonts(Object fonts) {
    Renamed renamed;
    Comparison fontsOfPart;
    auto all = Below(resources_, "/Font");
    for (auto& named : fonts.getDictAsMap()) {
        const std::string& name = named.first;
        Object& font = named.second;
        std::string unique = name;
        const auto isTaken = [&] {
            return all.hasKey(unique) && !fontsOfPart.AreAlike(all.getKey(unique), font);
        };
        for (int number = 2; isTaken(); ++number) {
            unique = name + "_" + std::to_string(number);
        }
        if (!all.hasKey(unique)) all.replaceKey(unique, font);
        if (unique != name) renamed[name] = unique;
    }
    return renamed;
}

PdfForms::Renamed PdfForms::AddResources(Object resources) {
    Renamed fonts;
    if (!resources.isInitialized() || !resources.isDictionary()) return fonts;
    for (auto& [kind, things] : resources.getDictAsMap()) {
        if (!things.isDictionary()) continue;
        if (kind == "/Font") {
            fonts = AddFonts(things);
            continue;
        }
        auto all = Below(resources_, kind);
        for (auto& [name, thing] : things.getDictAsMap()) {
            if (!all.hasKey(name)) all.replaceKey(name, thing);
        }
    }
    return fonts;
}

// The form's defaults for all of its fields become their own.
void PdfForms::AddDefaults(PdfFormPart& part, const Renamed& fonts) {
    if (part.appearance.isInitialized()) {
        part.appearance = Object::newString(WithFonts(part.appearance.getStringValue(), fonts));
        if (!appearance_.isInitialized()) appearance_ = part.appearance;
    }
    for (auto& root : part.roots) {
        if (!root.isDictionary()) continue;
        SetDefault(root, "/DA", part.appearance);
        SetDefault(root, "/Q", part.alignment);
    }
}

void PdfForms::Add(PdfFormPart part) {
    auto fields = FieldsOf(part.roots);
    if (RenameFields(fields)) {
        part.orders.clear();
        for (Field& field : fields) field.field.removeKey("/AA");
    }
    const Renamed fonts = AddResources(part.resources);
    for (Field& field : fields) ChangeFonts(field.field, fonts);
    AddDefaults(part, fonts);
    parts_.push_back({{part.roots, FirstNamesOf(fields), false, false}, std::move(part.actions)});
    std::ranges::move(part.roots, std::back_inserter(roots_));
    std::ranges::move(part.orders, std::back_inserter(orders_));
    needsAppearances_ |= part.needsAppearances;
}

void PdfForms::ConfineActions() {
    for (auto& [scope, actions] : parts_) {
        scope.hasOthers = parts_.size() > 1;
        scope.othersHaveFields = roots_.size() > scope.roots.size();
        for (const Object& action : actions) ConfineToPart(action, scope);
    }
}

// Nothing is taken over of a form that is described in XML besides.
void PdfForms::Write(Object catalog) {
    ConfineActions();
    if (roots_.empty()) return;
    auto form = Object::newDictionary();
    form.replaceKey("/Fields", Object::newArray(roots_));
    if (!resources_.getKeys().empty()) form.replaceKey("/DR", resources_);
    if (appearance_.isInitialized()) form.replaceKey("/DA", appearance_);
    if (!orders_.empty()) form.replaceKey("/CO", Object::newArray(orders_));
    if (needsAppearances_) form.replaceKey("/NeedAppearances", Object::newBool(true));
    catalog.replaceKey("/AcroForm", form);
}

} // namespace transforms::combine

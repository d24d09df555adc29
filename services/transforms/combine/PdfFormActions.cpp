#include "services/transforms/combine/PdfFormActions.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace transforms::combine {
namespace {

using Object = QPDFObjectHandle;

struct FieldAction {
    const char* kind;
    const char* fields; // the key of the fields that it acts on
    bool isOfAll;       // acts on all fields without that key
};
constexpr FieldAction kFieldActions[] = {
    {"/ResetForm", "/Fields", true}, {"/SubmitForm", "/Fields", true}, {"/Hide", "/T", false}};

// Of /Flags. All but those that are listed.
constexpr int kExclude = 1;
// Sends changes of the whole file, comments, the file, or the file with the values.
constexpr int kSendsMore = 1 << 6 | 1 << 7 | 1 << 8 | 1 << 13;

// What a script calls to act on all fields.
constexpr std::string_view kOfAllFields[] = {
    "resetForm", "submitForm", "mailForm", "numFields", "getNthFieldName", "exportAs", "importAn"};

bool IsOf(Object action, const char* kind) { return action.getKey("/S").isNameAndEquals(kind); }

const FieldAction* RowOf(Object action) {
    const auto row = std::ranges::find_if(
        kFieldActions, [&](const FieldAction& each) { return IsOf(action, each.kind); });
    return row == std::end(kFieldActions) ? nullptr : row;
}

bool IsScript(Object action) {
    return IsOf(action, "/JavaScript") || (IsOf(action, "/Rendition") && action.hasKey("/JS"));
}

// A field by its name: one that is referred to stays the same field.
bool NamesField(Object fields) {
    if (fields.isString()) return true;
    if (!fields.isArray()) return false;
    const auto items = fields.getArrayAsVector();
    return std::ranges::any_of(items, [](Object item) { return item.isString(); });
}

int FlagsOf(Object action) {
    auto flags = action.getKey("/Flags");
    return flags.isInteger() ? flags.getIntValueAsInt() : 0;
}

bool NamesAllFields(Object script) {
    if (!script.isString()) return true;
    const std::string text = script.getUTF8Value();
    return std::ranges::any_of(kOfAllFields,
                               [&](std::string_view word) { return text.find(word) != text.npos; });
}

// An action that does nothing.
void Disarm(Object action) {
    for (const std::string& key : action.getKeys()) action.removeKey(key);
    action.replaceKey("/S", Object::newName("/Hide"));
    action.replaceKey("/T", Object::newArray());
}

// A reference is always to a field of the action's own part.
bool IsOfPart(Object field, const PdfFormScope& scope) {
    if (!field.isString()) return field.isDictionary();
    const std::string name = field.getUTF8Value();
    return std::ranges::any_of(scope.firstNames, [&](const std::string& first) {
        return name == first || name.starts_with(first + '.');
    });
}

std::vector<Object> FieldsOfPart(Object fields, const PdfFormScope& scope) {
    auto found = fields.isArray() ? fields.getArrayAsVector() : std::vector<Object>{fields};
    std::erase_if(found, [&](const Object& field) { return !IsOfPart(field, scope); });
    return found;
}

// All fields below the roots are meant with them.
std::vector<Object> AllOf(const PdfFormScope& scope) {
    std::vector<Object> all;
    std::ranges::copy_if(scope.roots, std::back_inserter(all),
                         [](Object root) { return root.isIndirect() && root.isDictionary(); });
    return all;
}

void Confine(Object action, const FieldAction& row, const PdfFormScope& scope) {
    const bool isOfAll = row.isOfAll && !action.hasKey(row.fields);
    if (!isOfAll && row.isOfAll && FlagsOf(action) & kExclude) return Disarm(action);
    const auto fields = isOfAll ? AllOf(scope) : FieldsOfPart(action.getKey(row.fields), scope);
    if (fields.empty()) return Disarm(action);
    action.replaceKey(row.fields, Object::newArray(fields));
    if (isOfAll) action.replaceKey("/Flags", Object::newInteger(FlagsOf(action) & ~kExclude));
}

} // namespace

bool FindsFieldsByName(Object action) {
    const FieldAction* const row = RowOf(action);
    return IsScript(action) || (row && NamesField(action.getKey(row->fields)));
}

bool MayReachAllFields(Object dictionary) {
    return IsScript(dictionary) || RowOf(dictionary) || IsOf(dictionary, "/ImportData");
}

void ConfineToPart(Object action, const PdfFormScope& scope) {
    const bool sendsMore = IsOf(action, "/SubmitForm") && FlagsOf(action) & kSendsMore;
    if (scope.hasOthers && sendsMore) return Disarm(action);
    if (!scope.othersHaveFields) return;
    if (const FieldAction* const row = RowOf(action)) return Confine(action, *row, scope);
    if (IsOf(action, "/ImportData") || NamesAllFields(action.getKey("/JS"))) Disarm(action);
}

} // namespace transforms::combine

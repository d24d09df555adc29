#include "services/transforms/documents/XmlRules.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "services/transforms/documents/LocalPath.h"

namespace transforms::documents {
namespace {

using namespace personal;

constexpr std::string_view kAlternatives = "AlternateContent";

// Attributes that link to a file or describe one, under any prefix and of any element. A path in
// every other attribute is content: the text of a cell, a column's name, a filter.
constexpr std::string_view kNamingFiles[] = {
    "Target", "href",       "src",     "descr",           "title",
    "alt",    "sourceFile", "odcFile", "destinationFile", "display",
};

bool IsOfElements(XmlAction action) {
    return action != XmlAction::RemoveAttribute && action != XmlAction::SetAttribute;
}

// Edits inside one that is larger are dropped.
std::string Apply(std::string_view text, std::vector<XmlEdit> edits) {
    std::ranges::stable_sort(edits, [](const XmlEdit& one, const XmlEdit& other) {
        return one.begin != other.begin ? one.begin < other.begin : one.end > other.end;
    });
    std::string result;
    result.reserve(text.size());
    std::size_t at = 0;
    for (const XmlEdit& edit : edits) {
        if (edit.begin < at) continue;
        result += text.substr(at, edit.begin - at);
        result += edit.replacement;
        at = edit.end;
    }
    result += text.substr(at);
    return result;
}

class XmlCleaner {
public:
    XmlCleaner(std::string_view text, std::span<const XmlRule> rules, FindingCounter& found,
               const XmlLook& look)
        : text_(text), found_(found), look_(look), reader_(text) {
        for (const XmlRule& rule : rules) {
            (IsOfElements(rule.action) ? elements_ : attributes_).push_back(&rule);
        }
        const auto byName = [](const XmlRule* one, const XmlRule* other) {
            return one->name < other->name;
        };
        std::ranges::stable_sort(elements_, byName);
        std::ranges::stable_sort(attributes_, byName);
    }

    XmlResult Run() {
        if (!IsUtf8Xml(text_)) return {CleanOutcome::NotSupported, {}};
        while (reader_.Next()) {
            if (reader_.Event() == XmlEvent::Start) {
                AtStart();
            } else {
                AtEnd();
            }
        }
        if (!reader_.IsWhole()) return {CleanOutcome::Damaged, {}};
        if (edits_.empty()) return {};
        return {CleanOutcome::Cleaned, Apply(text_, std::move(edits_))};
    }

private:
    // What is done when the element that begins at `begin` ends.
    struct Pending {
        std::size_t begin;
        bool keepsTags;
        const XmlRule* rule;
    };

    // Nothing is looked for inside what goes.
    bool IsInsideRemoved() const { return !pending_.empty() && !pending_.back().keepsTags; }

    void AtStart() {
        if (IsInsideRemoved()) return;
        for (const XmlRule* rule : Fitting(elements_, reader_.Element().name))
            ApplyToElement(*rule);
        if (IsInsideRemoved()) return;
        for (const XmlAttribute& attribute : reader_.Attributes()) LookAt(attribute);
        if (!look_) return;
        if (auto edit = look_(reader_)) edits_.push_back(std::move(*edit));
    }

    struct ByName {
        bool operator()(const XmlRule* one, std::string_view name) const {
            return one->name < name;
        }
        bool operator()(std::string_view name, const XmlRule* one) const {
            return name < one->name;
        }
    };

    static std::span<const XmlRule* const> Fitting(const std::vector<const XmlRule*>& rules,
                                                   std::string_view name) {
        const auto range = std::equal_range(rules.begin(), rules.end(), name, ByName());
        return {range.first, range.second};
    }

    static bool Fits(const XmlRule& rule, Ns ns) { return rule.ns == ns || rule.ns == Ns::Any; }

    bool IsInside(std::string_view name) const {
        return name.empty() || std::ranges::find(reader_.Around(), name, &XmlElement::name) !=
                                   reader_.Around().end();
    }

    void ApplyToElement(const XmlRule& rule) {
        const XmlElement& element = reader_.Element();
        if (!Fits(rule, element.ns) || !IsInside(rule.of)) return;
        switch (rule.action) {
        case XmlAction::RemoveElement:
            return pending_.push_back({element.begin, false, &rule});
        case XmlAction::RemoveWrapped:
            return pending_.push_back({OutermostOf(element), false, &rule});
        case XmlAction::ReplaceText:
            return pending_.push_back({element.begin, true, &rule});
        default:
            return Count(rule);
        }
    }

    std::size_t OutermostOf(const XmlElement& element) const {
        for (const XmlElement& around : reader_.Around()) {
            if (around.ns == Ns::Compatibility && around.name == kAlternatives) return around.begin;
        }
        return element.begin;
    }

    void Count(const XmlRule& rule) {
        if (!rule.attribute.empty()) {
            const auto& all = reader_.Attributes();
            const auto found = std::ranges::find(all, rule.attribute, &XmlAttribute::name);
            if (found == all.end() || (!rule.value.empty() && found->value != rule.value)) return;
        }
        found_.Note(rule.kind);
    }

    void LookAt(const XmlAttribute& attribute) {
        for (const XmlRule* rule : Fitting(attributes_, attribute.name)) {
            const bool fits = Fits(*rule, attribute.ns) &&
                              (rule->of.empty() || rule->of == reader_.Element().name);
            if (fits) return ApplyToAttribute(*rule, attribute);
        }
        CutPath(attribute);
    }

    void ApplyToAttribute(const XmlRule& rule, const XmlAttribute& attribute) {
        if (rule.action == XmlAction::RemoveAttribute) {
            edits_.push_back(RemovalOf(text_, attribute.whole));
        } else if (attribute.value == rule.value || attribute.value.empty()) {
            return;
        } else {
            edits_.push_back(ReplacementOf(text_, attribute.value, std::string(rule.value)));
        }
        found_.Note(rule.kind);
    }

    void CutPath(const XmlAttribute& attribute) {
        if (std::ranges::find(kNamingFiles, attribute.name) == std::end(kNamingFiles)) return;
        const auto name = FileOfLocalPath(attribute.value);
        if (!name) return;
        edits_.push_back(ReplacementOf(text_, attribute.value, std::string(*name)));
        found_.Note(FindingKind::LocalPath);
    }

    void AtEnd() {
        while (!pending_.empty() && pending_.back().begin == reader_.Element().begin) {
            Conclude(pending_.back());
            pending_.pop_back();
        }
    }

    void Conclude(const Pending& pending) {
        if (!pending.keepsTags) {
            edits_.push_back({pending.begin, reader_.At(), {}});
            return found_.Note(pending.rule->kind);
        }
        const std::size_t begin = reader_.Element().tagEnd;
        const std::size_t end = text_.rfind('<', reader_.At() - 1);
        if (end < begin) return; // an empty-element tag
        const auto now = text_.substr(begin, end - begin);
        const auto& rule = *pending.rule;
        const bool isException =
            !rule.exceptWithStart.empty() && now.starts_with(rule.exceptWithStart);
        if (now.empty() || now == rule.value || isException) return;
        edits_.push_back({begin, end, std::string(rule.value)});
        found_.Note(rule.kind);
    }

    std::string_view text_;
    FindingCounter& found_;
    const XmlLook& look_;
    XmlReader reader_;
    std::vector<const XmlRule*> elements_;
    std::vector<const XmlRule*> attributes_;
    std::vector<Pending> pending_;
    std::vector<XmlEdit> edits_;
};

} // namespace

XmlEdit ReplacementOf(std::string_view text, std::string_view part, std::string replacement) {
    const auto begin = static_cast<std::size_t>(part.data() - text.data());
    return {begin, begin + part.size(), std::move(replacement)};
}

XmlEdit RemovalOfElement(const XmlReader& reader) {
    const XmlElement& element = reader.Element();
    const auto text = reader.Text();
    if (text.substr(0, element.tagEnd).ends_with("/>")) {
        return {element.begin, element.tagEnd, {}};
    }
    const auto close = text.find("</", element.tagEnd);
    const auto last = close == text.npos ? close : text.find('>', close);
    return {element.begin, last == text.npos ? element.tagEnd : last + 1, {}};
}

XmlEdit RemovalOf(std::string_view text, std::string_view part) {
    return ReplacementOf(text, part, {});
}

XmlResult CleanXml(std::string_view text, std::span<const XmlRule> rules, FindingCounter& found,
                   const XmlLook& look) {
    return XmlCleaner(text, rules, found, look).Run();
}

} // namespace transforms::documents

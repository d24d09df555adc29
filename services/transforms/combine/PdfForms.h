// The form fields of several PDFs in one form.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "services/transforms/combine/PdfCopier.h"
#include "services/transforms/combine/PdfFormActions.h"

namespace transforms::combine {

// The form of one part, as objects of the target.
struct PdfFormPart {
    std::vector<QPDFObjectHandle> roots;  // fields without a parent
    QPDFObjectHandle appearance;          // /DA of the form; not initialized where there is none
    QPDFObjectHandle alignment;           // /Q
    QPDFObjectHandle resources;           // /DR
    std::vector<QPDFObjectHandle> orders; // /CO: the fields that are calculated, in order
    bool needsAppearances = false;
    std::vector<QPDFObjectHandle> actions; // of the whole part, that may act on all fields
};

class PdfForms {
public:
    // `steps` learns that the work goes on; null when nobody wants to know.
    explicit PdfForms(PictureSteps* steps = nullptr) : steps_(steps) {}

    // A field stays one, with all its widgets, whatever page they are on. A widget whose field the
    // form doesn't list counts too. To be added after the copier has finished.
    static PdfFormPart Copy(PdfCopier& copier, QPDF& source,
                            const std::vector<documents::PdfPage>& pages);

    // Whether a field of the file gets another name by Add. Its scripts, which then would find
    // other fields, aren't to be copied. Throws PdfRefusal as Add does.
    bool WillRename(QPDF& source, const std::vector<documents::PdfPage>& pages) const;

    // To be called for every part, also for one without fields. A part with a field that gets
    // another name loses what its fields do on events, and what is calculated. Throws PdfRefusal
    // when the fields are nested too deeply; nothing is added then.
    void Add(PdfFormPart part);
    // Once. The actions of each part act on that part's fields alone afterwards.
    void Write(QPDFObjectHandle catalog);

private:
    using Renamed = std::map<std::string, std::string>;
    struct Field {
        QPDFObjectHandle field;
        bool hasFirstName; // the first of those that its full name consists of
    };

    std::vector<Field> FieldsOf(const std::vector<QPDFObjectHandle>& roots) const;
    static std::set<std::string> FirstNamesOf(std::vector<Field>& fields);
    bool RenameFields(std::vector<Field>& fields); // true: one got another name
    Renamed AddResources(QPDFObjectHandle resources);
    Renamed AddFonts(QPDFObjectHandle fonts);
    void AddDefaults(PdfFormPart& part, const Renamed& fonts);
    void ConfineActions();

    // Of one part: its actions, and where they may act.
    struct Part {
        PdfFormScope scope;
        std::vector<QPDFObjectHandle> actions;
    };

    PictureSteps* steps_;
    std::vector<Part> parts_;
    std::vector<QPDFObjectHandle> roots_;
    std::vector<QPDFObjectHandle> orders_;
    std::set<std::string> names_; // first names that are taken
    QPDFObjectHandle resources_ = QPDFObjectHandle::newDictionary();
    QPDFObjectHandle appearance_;
    bool needsAppearances_ = false;
};

} // namespace transforms::combine

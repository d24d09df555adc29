// Buttons and scripts of a PDF that would act on the fields of another one once both are one file.
#pragma once

#include <set>
#include <string>
#include <vector>

#include <qpdf/QPDFObjectHandle.hh>

namespace transforms::combine {

// Whether the action is a script, whatever that does, or acts on fields by their names.
bool FindsFieldsByName(QPDFObjectHandle action);

// Whether the dictionary is an action that may act on all fields of its file.
bool MayReachAllFields(QPDFObjectHandle dictionary);

// The part of a file that an action comes from.
struct PdfFormScope {
    std::vector<QPDFObjectHandle> roots; // its fields without a parent
    std::set<std::string> firstNames;    // the first of those that a field's full name consists of
    bool hasOthers;                      // there are other parts,
    bool othersHaveFields;               // and some of them have fields
};

// Changes an action of the part so that it acts on the part's own fields. One for which that can't
// be done does nothing afterwards: all fields but some, data from a file, a script that names all
// fields or that is a stream, and a button that sends the whole file or its comments. A script that
// stays may still find a field by a name that is made while it runs.
void ConfineToPart(QPDFObjectHandle action, const PdfFormScope& scope);

} // namespace transforms::combine

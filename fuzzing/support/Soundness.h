// What holds of the index of any text, well formed or not.
#pragma once

#include "ObLibX/src/xml/XmlOffsetDocument.h"

// Every record within the text and within its parent, the lists of siblings linked both ways, each
// record linked once, the levels those of the links, tags where the records say.
void RequireSoundRecords(const ObLibX::XmlOffsetDocument& document);

// The report is XML itself, and nothing was begun far behind the place where it takes no more.
void RequireSoundReport(const std::wstring& report);

// The records are those of the text indexed anew, whatever their order.
void RequireAsIndexedAnew(const ObLibX::XmlOffsetDocument& document);

// Checks of the index of any text, well formed or not.
#pragma once

#include "ObLibX/src/xml/XmlOffsetDocument.h"

// Every record within the text and within its parent, the lists of siblings linked both ways, each
// record linked once, the levels those of the links, tags at the offsets of the records.
void RequireSoundRecords(const ObLibX::XmlOffsetDocument& document);

// The report is XML itself, and no element of it begins far past the limit.
void RequireSoundReport(const std::wstring& report);

// The records are those of the text indexed anew, whatever their order.
void RequireAsIndexedAnew(const ObLibX::XmlOffsetDocument& document);

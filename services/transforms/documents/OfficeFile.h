// Office documents: packages of either kind, and what only looks like one.
#pragma once

#include "services/transforms/documents/DocumentControl.h"
#include "services/transforms/personal/Analysis.h"

namespace transforms::documents {

// A zip that names what a document begins with. Other zips are no documents.
bool IsOfficePackage(personal::Bytes file);
// A step is each part and, in XML, each element.
personal::Analysis AnalyzeOfficePackage(personal::Bytes file, const DocumentControl& control = {});

// The older container of Office: a document with a password is one inside it.
bool IsOldContainer(personal::Bytes file);
personal::Analysis AnalyzeOldContainer(personal::Bytes file, const DocumentControl& control = {});

} // namespace transforms::documents

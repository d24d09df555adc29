// Office documents: packages of either kind, and what only looks like one.
#pragma once

#include "services/transforms/personal/Analysis.h"
#include "services/transforms/raster/PictureControl.h"

namespace transforms::documents {

// A zip that names what a document begins with. Other zips are no documents.
bool IsOfficePackage(personal::Bytes file);
// `steps`, which may be null, learns of each part and, in XML, of each element.
personal::Analysis AnalyzeOfficePackage(personal::Bytes file, PictureSteps* steps = nullptr);

// The older container of Office: a document with a password is one inside it.
bool IsOldContainer(personal::Bytes file);
personal::Analysis AnalyzeOldContainer(personal::Bytes file, PictureSteps* steps = nullptr);

} // namespace transforms::documents

// Ids of the settings dialog of files that become PDFs.
#pragma once

#define OB_PDF_DIALOG 800
#define OB_PDF_INTRO 801
#define OB_PDF_KINDS 802
#define OB_PDF_PICTURES 803
#define OB_PDF_DOCUMENTS 804
#define OB_PDF_PAGES 805
#define OB_PDF_NOTE 806
// In the order of the pages.
#define OB_PDF_AS_PICTURE 810
#define OB_PDF_A4 811
#define OB_PDF_LETTER 812

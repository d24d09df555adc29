// Ids of the settings window and its controls; the resource scripts include this file, so it has
// nothing but definitions of the preprocessor.
#pragma once

// Two templates with the same controls: the second one for screens of 144 dots per inch and more.
#define OB_OPTIONS 102
#define OB_OPTIONS_LARGE 103

// Ends with 1; a cancel is IDCANCEL.
#define OB_OPTIONS_OK 8

#define OB_OPTIONS_CLOUD 1000
#define OB_OPTIONS_ATTACHMENT 1001
#define OB_OPTIONS_UPDATE 1003
#define OB_OPTIONS_ABOUT 1006

#define OB_OPTIONS_HEADLINE_1 1007
#define OB_OPTIONS_HEADLINE_2 1008
#define OB_OPTIONS_HEADLINE_3 1009
#define OB_OPTIONS_BROWSERS 1053
#define OB_OPTIONS_EXPLANATION_1 1060
#define OB_OPTIONS_EXPLANATION_2 1061
#define OB_OPTIONS_EXPLANATION_3 1062
#define OB_OPTIONS_EXPLANATION_4 1063

// The transforms: a box each, and a settings button for all but the combined PDF.
#define OB_OPTIONS_CONVERT_PDF 1016
#define OB_OPTIONS_CONVERT_PDF_SETTINGS 1012
#define OB_OPTIONS_RESIZE_IMAGES 1017
#define OB_OPTIONS_RESIZE_IMAGES_SETTINGS 1013
#define OB_OPTIONS_WATERMARK 1018
#define OB_OPTIONS_WATERMARK_SETTINGS 1014
#define OB_OPTIONS_CONVERT_PHOTOS 1050
#define OB_OPTIONS_CONVERT_PHOTOS_SETTINGS 1040
#define OB_OPTIONS_REMOVE_INFO 1051
#define OB_OPTIONS_REMOVE_INFO_SETTINGS 1041
#define OB_OPTIONS_COMBINE_PDFS 1052
#define OB_OPTIONS_SIGN_PDFS 1054
#define OB_OPTIONS_SIGN_PDFS_SETTINGS 1044
#define OB_OPTIONS_CONVERT_FROM_PDF 1055
#define OB_OPTIONS_CONVERT_FROM_PDF_SETTINGS 1045

// The browsers: adds the product's extension.
#define OB_OPTIONS_EDGE 1042
#define OB_OPTIONS_FIREFOX 1043
#define OB_OPTIONS_CHROME 1046

// Pictures; each is the id of its control and of its image at 96 dots per inch.
#define OB_OPTIONS_PICTURE_1 110
#define OB_OPTIONS_PICTURE_2 101
#define OB_OPTIONS_PICTURE_3 104
#define OB_OPTIONS_PICTURE_4 113

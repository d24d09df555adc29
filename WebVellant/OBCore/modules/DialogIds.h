// Ids of the dialogs in the language resource and of their controls; the resource scripts include
// this file, so it has nothing but definitions of the preprocessor.
#pragma once

// The progress of the transforms: its bar, and a text of two lines below the bar.
#define OB_TRANSFORM_PROGRESS 121
#define OB_TRANSFORM_BAR 1000
#define OB_TRANSFORM_STATUS 1001

// The chooser of a cloud account. The label is the list's; the hint is for a user without an
// account.
#define OB_CHOOSER 114
#define OB_CHOOSER_CONTINUE 1208
#define OB_CHOOSER_HEADLINE 1211
#define OB_CHOOSER_LIST 1212
#define OB_CHOOSER_DEFAULT 1214
#define OB_CHOOSER_EXPLANATION 2001
#define OB_CHOOSER_LABEL 2002
#define OB_CHOOSER_HINT 2003

// The icon of the product's windows.
#define OB_PRODUCT_ICON 111

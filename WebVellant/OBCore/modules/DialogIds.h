// Ids of the dialogs in the language resource and of their controls; the resource scripts include
// this file, so it has nothing but definitions of the preprocessor.
#pragma once

// The progress of the transforms: its bar, and a text of two lines below the bar.
#define OB_TRANSFORM_PROGRESS 121
#define OB_TRANSFORM_BAR 1000
#define OB_TRANSFORM_STATUS 1001

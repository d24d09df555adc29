// Ids of the dialogs that the tests of texts and edits open.
#pragma once

#define OB_TEST_FIELDS 2301
#define OB_TEST_TEXTS 2302
#define OB_TEST_TWO_PUSHES 2303
#define OB_TEST_SAME_IDS 2304
#define OB_TEST_CLASSES 2305
#define OB_TEST_DEFAULT 2306
#define OB_TEST_ACCENT 2307
#define OB_TEST_BLUE_AND_DEFAULT 2308

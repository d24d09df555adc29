// Ids of the dialogs that the tests of links open.
#pragma once

#define OB_TEST_LINKS 2311
#define OB_TEST_LINKS_AND_TEXTS 2312

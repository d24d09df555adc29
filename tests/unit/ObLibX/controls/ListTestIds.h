// Ids of the dialogs that the tests of list views open.
#pragma once

#define OB_TEST_LISTS 2321
#define OB_TEST_TITLE_NAME 41001
#define OB_TEST_TITLE_SIZE 41002

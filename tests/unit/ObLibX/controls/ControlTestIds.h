// Ids of the dialogs that the tests of controls open.
#pragma once

#define OB_TEST_PUSH_BUTTONS 2201
#define OB_TEST_TOGGLES 2202

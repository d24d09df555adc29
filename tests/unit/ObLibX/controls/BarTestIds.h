// Ids of the dialog that the tests of bars open.
#pragma once

#define OB_TEST_EVERY_BAR 2501

// Ids of the dialog that has a control of each class.
#pragma once

#define OB_EVERY_CONTROL 2401
#define OB_FIRST_CONTROL 1001
#define OB_LAST_CONTROL 1033
#define OB_LINK 1033 // a label with an object besides

// Ids of the settings of update checks and their controls; the resource scripts include this file,
// so it has nothing but definitions of the preprocessor.
#pragma once

#define OB_UPDATE_CHECK 106

#define OB_UPDATE_CHECK_AUTOMATIC 1000
#define OB_UPDATE_CHECK_INTERVAL 1001
#define OB_UPDATE_CHECK_NEVER 1002
#define OB_UPDATE_CHECK_NOW 1003
#define OB_UPDATE_CHECK_HEADLINE 1004

// Ids of the tests' dialogs.
#pragma once

#define OB_TEST_PLAIN 2001
#define OB_TEST_EXTENDED 2002
#define OB_TEST_GROUPS 2003
#define OB_TEST_SCROLLED 2004
#define OB_TEST_DRESSED 2005
#define OB_TEST_LIST 2006
#define OB_TEST_BUTTONS 2007
#define OB_TEST_LABELS 2008
#define OB_TEST_PAGE 2009

// Id of the icon of WebDAV accounts.
#pragma once

#define OB_DAV_ICON 861

// Id of the icon of network folders.
#pragma once

#define OB_FOLDER_ICON 860

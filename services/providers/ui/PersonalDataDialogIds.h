// Ids of the settings dialog of personal data.
#pragma once

#define OB_PERSONAL_DATA_DIALOG 600
#define OB_PERSONAL_DATA_INTRO 601
#define OB_PERSONAL_DATA_RECEIPT 602
#define OB_PERSONAL_DATA_REST 603
#define OB_PERSONAL_DATA_ASK 604
#define OB_PERSONAL_DATA_STOP 605

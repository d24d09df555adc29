// Ids of the receipt.
#pragma once

#define OB_RECEIPT_DIALOG 620
#define OB_RECEIPT_HEADLINE 621
#define OB_RECEIPT_LIST 622
#define OB_RECEIPT_SAVE 623
#define OB_RECEIPT_ICON 624

// Ids of the texts outside the two dialogs: the policies, the zip's failures, help and update.
#pragma once

// The password policy, and encryption that is switched off. The product has texts of its own for
// these (ProductTexts.h), which are shown where its library is there.
#define OB_TEXT_POLICY_LENGTH 240
#define OB_TEXT_POLICY_CLASSES 241
#define OB_TEXT_A_LOWER_CASE 242
#define OB_TEXT_AN_UPPER_CASE 243
#define OB_TEXT_A_DIGIT 244
#define OB_TEXT_A_SYMBOL 245
#define OB_TEXT_LIST_COMMA 246

#define OB_TEXT_POLICY_CAPTION 250
#define OB_TEXT_POLICY_REQUEST 251
#define OB_TEXT_ENCRYPTION_OFF 252

// Failures of Zip: 300 and the result's own number, so that a failure without a text shows.
#define OB_TEXT_ZIP_FAILED 300
#define OB_TEXT_SOME_FILE 399

#define OB_TEXT_HELP_ELSEWHERE 400
#define OB_TEXT_VERSION 401
#define OB_TEXT_VERSION_AND_ADDRESS 402
#define OB_TEXT_UPDATES_ELSEWHERE 403

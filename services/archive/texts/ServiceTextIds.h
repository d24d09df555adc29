// Ids of what the service says besides the password prompt: the zip's failures, its progress, help
// and update. For their texts and their code.
#pragma once

// Failures of Zip: 300 and the result's own number, so that a failure without a text shows.
#define OB_TEXT_ZIP_FAILED 300
#define OB_TEXT_SOME_FILE 399

#define OB_TEXT_HELP_ELSEWHERE 400
#define OB_TEXT_VERSION 401
#define OB_TEXT_VERSION_AND_ADDRESS 402
#define OB_TEXT_UPDATES_ELSEWHERE 403

#define OB_TEXT_PROGRESS_HOURS 421
#define OB_TEXT_PROGRESS_MINUTES 422
#define OB_TEXT_PROGRESS_ONE_MINUTE 423
#define OB_TEXT_PROGRESS_SECONDS 424
#define OB_TEXT_PROGRESS_FEW_SECONDS 425
#define OB_TEXT_PROGRESS_FINISHING 426
#define OB_TEXT_PROGRESS_CANCELLING 427

#define OB_PROGRESS_WINDOW 440
#define OB_PROGRESS_INTRO 441
#define OB_PROGRESS_FILE 442
#define OB_PROGRESS_BAR 443
#define OB_PROGRESS_TIME_LEFT 444

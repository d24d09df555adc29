// Ids of the cloud settings and their controls; the resource scripts include this file, so it has
// nothing but definitions of the preprocessor.
#pragma once

#define OB_CONFIGURE_CLOUD 115

#define OB_CLOUD_SEND_HEADLINE 1200
#define OB_CLOUD_SEND_LARGE 1202
#define OB_CLOUD_SEND_ALWAYS 1201
#define OB_CLOUD_SEND_NEVER 1203
#define OB_CLOUD_MINIMUM_SIZE 1204
#define OB_CLOUD_MINIMUM_SIZE_SPIN 1205
#define OB_CLOUD_ACCOUNTS_HEADLINE 1206
#define OB_CLOUD_ACCOUNTS 1207
#define OB_CLOUD_LOGIN 1208
#define OB_CLOUD_LOGOUT 1209
#define OB_CLOUD_SET_DEFAULT 1210
#define OB_CLOUD_ADD_ACCOUNT 1215
#define OB_CLOUD_EXPIRY_HEADLINE 1216
#define OB_CLOUD_EXPIRE 1217
#define OB_CLOUD_DAYS 1218
#define OB_CLOUD_DAYS_SPIN 1219
#define OB_CLOUD_MANAGE 1220

// Labels that the dialog's code doesn't use.
#define OB_CLOUD_SIZE_LABEL 2001
#define OB_CLOUD_DAYS_LABEL 2002

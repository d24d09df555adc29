// Ids of the login to a WebDAV server.
#pragma once

#define OB_DAV_LOGIN_DIALOG 870
#define OB_DAV_LOGIN_INTRO 871
#define OB_DAV_ADDRESS_LABEL 872
#define OB_DAV_ADDRESS 873
#define OB_DAV_USER_LABEL 874
#define OB_DAV_USER 875
#define OB_DAV_PASSWORD_LABEL 876
#define OB_DAV_PASSWORD 877
#define OB_DAV_LOGIN_STATE 878

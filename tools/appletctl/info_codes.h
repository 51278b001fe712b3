/** The questions of the applet's Info function that this program asks. */
#ifndef APPLETCTL_INFO_CODES_H
#define APPLETCTL_INFO_CODES_H

namespace appletctl {

enum InfoCode {
    infoIcon = 1041,
    infoDesignImage = 1042,
    infoProductGuid = 1043,
    infoVersionGuid = 1044,
    infoVersionWord = 2048,
    infoDesignType = 2176,
    infoDescription = 4096,
    infoCategory = 4112,
    infoTags = 4128,
    infoName = 4176,
    infoVersion = 4192,
    infoBuild = 4208,
    infoProcesses = 4608,
    infoCreateOffline = 4864,
    infoOfflineTree = 4880,
    infoDestroyOffline = 4896
};

} // namespace appletctl

#endif

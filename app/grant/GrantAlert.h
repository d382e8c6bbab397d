#pragma once

#include "platform/files/FolderGrant.h"
#include "platform/sheet/Alert.h"

/// Says why Vantor cannot work in the home folder that was granted, and offers to grant again: the
/// first button is "Choose Again…".
Alert grantAlert(GrantFailure failure);

/// Says that another folder was already in use in this run, so the new one takes effect with the
/// next start. The first button is "Restart Vantor".
Alert grantNotInForceAlert();

#pragma once

#include "platform/files/FolderGrant.h"
#include "platform/sheet/Alert.h"

/// Why Vantor cannot work in the home folder that was granted, with the offer to grant again: the
/// first button is "Choose Again…".
Alert grantAlert(GrantFailure failure);

/// That another folder was in use before in this run: the new one takes effect with the next start.
/// The first button is "Restart Vantor".
Alert grantNotInForceAlert();

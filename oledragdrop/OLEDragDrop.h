// Data transfer with the desktop: drag sources and drop targets for controls, the data that they exchange, and the
// picture that follows the mouse.
#pragma once

#include "oledragdrop/DragImageList.h"
#include "oledragdrop/DropSource.h"
#include "oledragdrop/DropTarget.h"
#include "oledragdrop/Interfaces.h"
#include "oledragdrop/OleObjectWrapper.h"

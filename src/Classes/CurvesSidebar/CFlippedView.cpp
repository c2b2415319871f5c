// The anchor of the flipped view's class information.
#include "Classes/CurvesSidebar/CFlippedView.h"

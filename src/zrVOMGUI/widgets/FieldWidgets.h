#pragma once

/// The field editors: lines that show and edit one field on many objects.
///
/// FieldRealLineEdit is the one for real fields. Take FieldLineEditT for fields of another class,
/// and FieldManagerT for a widget of another kind.

#include "zrVOMGUI/widgets/FieldLineEditT.h"
#include "zrVOMGUI/widgets/FieldManagerT.h"
#include "zrVOMGUI/widgets/FieldRealLineEdit.h"
#include "zrVOMGUI/widgets/FieldWidgetT.h"
#include "zrVOMGUI/widgets/ObjsManager.h"

# sidebar: the rows of the list of curves.
velquin_library(sidebar
  HEADERS
    Classes/CurvesSidebar/CCurveView.h
    Classes/CurvesSidebar/CCurveViewController.h
    Classes/CurvesSidebar/CCurveViewControllerDelegate.h
    Classes/CurvesSidebar/ColorButton.h
    Classes/CurvesSidebar/CompletionList.h
    Classes/CurvesSidebar/ExpressionField.h
    Classes/CurvesSidebar/ExpressionSuggestions.h
    Classes/CurvesSidebar/RowPopups.h
    Classes/CurvesSidebar/RowTextField.h
    Classes/CurvesSidebar/SpinField.h
  SOURCES
    Classes/CurvesSidebar/CCurveView.cpp
    Classes/CurvesSidebar/CCurveViewController.cpp
    Classes/CurvesSidebar/CCurveViewControllerShowing.cpp
    Classes/CurvesSidebar/ColorButton.cpp
    Classes/CurvesSidebar/CompletionList.cpp
    Classes/CurvesSidebar/ExpressionField.cpp
    Classes/CurvesSidebar/ExpressionSuggestions.cpp
    Classes/CurvesSidebar/RowPopups.cpp
    Classes/CurvesSidebar/RowTextField.cpp
    Classes/CurvesSidebar/SpinField.cpp
  USES velquin_model velquin_widgetkit)
set_target_properties(velquin_sidebar PROPERTIES AUTOUIC ON)

# expression: a column of values from an expression over a table. The parser library stays behind it.
find_package(PkgConfig REQUIRED)
pkg_check_modules(muparserx REQUIRED IMPORTED_TARGET muparserx)
velquin_library(expression
  HEADERS
    Classes/ExpressionEvaluator/EvaluationRun.h
    Classes/ExpressionEvaluator/EvaluatorFunctions.h
    Classes/ExpressionEvaluator/ExpressionCompiler.h
    Classes/ExpressionEvaluator/ExpressionErrors.h
    Classes/ExpressionEvaluator/ExpressionParser.h
    Classes/ExpressionEvaluator/ExpressionText.h
    Classes/ExpressionEvaluator/FunctionHelp.h
    Classes/ExpressionEvaluator/RowEvaluator.h
    Classes/ExpressionEvaluator/XExpressionEvaluator.h
    Classes/ExpressionEvaluator/XExpressionEvaluatorTask.h
  SOURCES
    Classes/ExpressionEvaluator/EvaluationRun.cpp
    Classes/ExpressionEvaluator/EvaluatorFunctions.cpp
    Classes/ExpressionEvaluator/ExpressionCompiler.cpp
    Classes/ExpressionEvaluator/ExpressionErrors.cpp
    Classes/ExpressionEvaluator/ExpressionParser.cpp
    Classes/ExpressionEvaluator/ExpressionText.cpp
    Classes/ExpressionEvaluator/FunctionHelp.cpp
    Classes/ExpressionEvaluator/RowEvaluator.cpp
    Classes/ExpressionEvaluator/XExpressionEvaluator.cpp
    Classes/ExpressionEvaluator/XExpressionEvaluatorTask.cpp
  USES velquin_platform
  PRIVATE_USES PkgConfig::muparserx)

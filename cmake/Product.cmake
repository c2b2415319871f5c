# What the product is called and where it lives on the web: the one place for both.
set(VELQUIN_ID com.quarnix.Velquin) # of the desktop entry, the icons, the metainfo, the window class, the bus
set(VELQUIN_SITE "https://velquin.quarnix.com/" CACHE STRING "The web site")
set(VELQUIN_FORUM "https://forum.quarnix.com/velquin/" CACHE STRING "The community forum")
set(VELQUIN_BUG_REPORTS "https://forum.quarnix.com/velquin/bugs/" CACHE STRING "Where faults are reported")
set(VELQUIN_FEATURE_REQUESTS "https://forum.quarnix.com/velquin/features/" CACHE STRING "Where features are asked for")
set(VELQUIN_RELEASE_FEED "" CACHE STRING "The feed of releases; empty where a package manager updates the program")
set(VELQUIN_DOWNLOADS "https://velquin.quarnix.com/download/" CACHE STRING "The download page, for a feed that names none")
set(VELQUIN_MAKER Quarnix CACHE STRING "Who makes it")
set(VELQUIN_MAINTAINER "Quarnix <velquin@quarnix.com>" CACHE STRING "Who answers for packages: NAME <ADDRESS>")
# Of the version in CMakeLists.txt, in seconds since 1970: 2026-11-21 12:00 UTC.
set(VELQUIN_RELEASE_TIME 1795262400)
set(VELQUIN_NAME Velquin)
set(VELQUIN_SENTENCE "Plots large tables of numbers and time series.")
set(VELQUIN_MIME_TYPE application/vnd.quarnix.velquin) # of documents
# SPDX expressions. The owner has not chosen a licence yet; the metainfo's own must be a permissive one.
set(VELQUIN_LICENSE LicenseRef-proprietary)
set(VELQUIN_METADATA_LICENSE FSFAP)
configure_file(${CMAKE_SOURCE_DIR}/src/Product.h.in ${CMAKE_BINARY_DIR}/generated/Product.h @ONLY)

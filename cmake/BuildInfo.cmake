# Version texts fixed at build time for kps_version_str: the version number,
# the fix level and the build date (UTC; SOURCE_DATE_EPOCH is honoured so
# that reproducible builds get a reproducible date).
set(TQL70_VERSION_NUMBER "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")
set(TQL70_FIX_LEVEL "${PROJECT_VERSION_PATCH}")
string(TIMESTAMP TQL70_BUILD_DATE "%Y-%m-%d" UTC)

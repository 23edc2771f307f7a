/* Name validation and repair, the current configuration with string value
 * lookups, and the astr_ string helpers. */
#ifndef TQL70_ASTR_H
#define TQL70_ASTR_H

#include "export.h"

TQL70_BEGIN_DECLS

TQL70_END_DECLS

#endif /* TQL70_ASTR_H */

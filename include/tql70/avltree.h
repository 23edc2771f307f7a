/* Height-balanced binary tree of caller items, and the string database
 * built on it. */
#ifndef TQL70_AVLTREE_H
#define TQL70_AVLTREE_H

#include "export.h"

TQL70_BEGIN_DECLS

TQL70_END_DECLS

#endif /* TQL70_AVLTREE_H */

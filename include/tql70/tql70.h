/* tql70: the umbrella header. Includes every family of the library. */
#ifndef TQL70_TQL70_H
#define TQL70_TQL70_H

#include "export.h"
#include "error.h"
#include "aerr.h"
#include "gerror.h"
#include "process_env.h"
#include "gui_env.h"
#include "astr.h"
#include "gmem.h"
#include "string_search.h"
#include "gparse.h"
#include "avltree.h"
#include "list.h"
#include "memcntl.h"
#include "glist.h"
#include "gmsg.h"
#include "gprj.h"
#include "zq_paths.h"
#include "gfile.h"
#include "tql_os.h"
#include "zq_arrays.h"
#include "gtime.h"
#include "gmath.h"
#include "platform.h"
#include "base64.h"
#include "tql_regex.h"
#include "gcrypt.h"
#include "dbug.h"
#ifndef TQL70_OMIT_HASHDB
#include "hashdb.h"
#endif

#endif /* TQL70_TQL70_H */

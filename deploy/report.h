// Reporting of the tool's own modules: findings, failures and error buffers.
//
// A finding is one line on standard error, one record in the log (where it has a log text) and a
// flag raised. Nothing else prints, logs and raises.
#ifndef DEPLOY_REPORT_H
#define DEPLOY_REPORT_H

#include "dd/call.h"

enum class tav_deploy_raises { NOTHING, ERROR, CONFLICT, CONFLICT_AND_ERROR };

// Reports a finding; `log_text` may be null for none.
void tav_deploy_report(dd_site site, tav_deploy_raises raises, const char* log_text,
                       const char* format, ...) TAV_PRINTF(4, 5);

// A line and its log record that raise no flag; gives -1.
//   return tav_deploy_fail(HERE, "Unable to login", "Error: Unable to login\n");
int tav_deploy_fail(dd_site site, const char* log_text, const char* format, ...) TAV_PRINTF(3, 4);
// The same with a text that stands in a table.
int tav_deploy_fail_as(dd_site site, const char* log_text, const char* text);

// Shows an error buffer and where to look further.
void tav_deploy_display_ebuf(const tav_ebuf* ebuf);

// A failed client-library call: "Error: Internal Error\n", the buffer shown, and logged under the
// text; gives -1.
int tav_deploy_call_failed(dd_site site, const tav_ebuf& ebuf,
                           const char* log_text = "Flist error");

// An outcome line on standard output, which is then flushed.
void tav_deploy_print_outcome(const char* line);

#endif

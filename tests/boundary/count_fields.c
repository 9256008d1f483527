/* Counts the fields of the dictionary that tav.conf names: a program of somebody else's, in C. */
#include <dd/vantor.h>
#include <stdio.h>

int main(void) {
  tav_ebuf ebuf = {0};
  tcm_context_t* context = NULL;
  uint64_t database = 0;
  tav_flist_t* output = NULL;
  tcm_connect(&context, &database, &ebuf);
  tav_flist_t* input = tav_flist_create(&ebuf);
  tavi_flist_put(input, TAV_FLD_POID, 0, 0, tav_poid_create(database, "/dd/fields", 0, &ebuf),
                 &ebuf);
  tcm_op(context, TCM_OP_SDK_GET_FLD_SPECS, 0, input, &output, &ebuf);
  if (ebuf.err_code == TAV_ERR_NONE)
    printf("%d\n", (int)tav_flist_elem_count(output, TAV_FLD_FIELD, &ebuf));
  if (ebuf.err_code != TAV_ERR_NONE) fprintf(stderr, "%s\n", tav_taverr_to_str(ebuf.err_code));
  const int failed = ebuf.err_code != TAV_ERR_NONE;
  tav_flist_destroy(input, NULL);
  tav_flist_destroy(output, NULL);
  tcm_context_close(context, 0, NULL);
  return failed;
}

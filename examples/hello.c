// SPDX-License-Identifier: MIT
#include <orb/qxorbclient.h>
#include <stdio.h>

int main(int argc, char** argv) {
  orbClientRuntime* orb = orbInitialize();
  orbClientConfig* config = NULL;
  orbClientContext* ctx = NULL;
  if (!orb || orb->createConfig(&config) || orb->createContext(&ctx, config)) return 2;
  orbArray matrix = orbCreateDoubleMatrix(2, 2, orbREAL), values = NULL;
  for (int i = 0; i < 4; ++i) orbGetPr(matrix)[i] = i + 1;  // column by column
  orbStatus status = orb->feval(ctx, argc > 1 ? argv[1] : "", 1, &values, 1, &matrix);
  if (status == ORB_OK) printf("%g %g\n", orbGetPr(values)[0], orbGetPr(values)[1]);
  if (status != ORB_OK) {
    orbErrorInfo error;
    orb->getLastErrorInfo(ctx, &error);
    fprintf(stderr, "%s\n", error.message);
    orb->destroyLastErrorInfo(&error);
  }
  orbDestroyArray(values);
  orbDestroyArray(matrix);
  orb->destroyContext(ctx);
  orb->destroyConfig(config);
  orbTerminate();
  return (int)status;
}

// SPDX-License-Identifier: MIT
// Fits Longley's employment data on a server, compares the coefficients with the
// certified ones, and then shows each kind of failure as the caller sees it.
#define _POSIX_C_SOURCE 200809L  // fileno(), isatty()

#include <orb/qxorbclient.h>

#include <math.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

enum { kYears = 16, kTerms = 7 };

// Ten agreeing digits.
static const double kTolerance = 1e-10;

typedef struct Term {
  char name[16];
  double certified;
} Term;

typedef struct Client {
  orbClientRuntime* runtime;
  orbClientConfig* config;
  orbClientContext* context;
} Client;

typedef struct Colours {
  const char *strong, *good, *bad, *off;
} Colours;

static Colours colours(void) {
  if (isatty(fileno(stdout)))
    return (Colours){"\x1b[1m", "\x1b[32m", "\x1b[31m", "\x1b[0m"};
  return (Colours){"", "", "", ""};
}

static void printTitle(const char* title) {
  printf("\n%s%s%s\n", colours().strong, title, colours().off);
}

static FILE* openTable(const char* path) {
  FILE* file = fopen(path, "r");
  if (file == NULL) {
    perror(path);
  } else if (fscanf(file, "%*[^\n]") == EOF) {  // the line of column names
    fprintf(stderr, "%s: empty\n", path);
    fclose(file);
    file = NULL;
  }
  return file;
}

// Fills the response `y` and the model matrix `x`, whose first column is the intercept's.
static bool readObservations(const char* path, double* y, double* x) {
  FILE* file = openTable(path);
  if (file == NULL) return false;
  int year = 0;
  for (; year < kYears; ++year) {
    double* row = x + year;  // column-major: the next term lies kYears further
    row[0] = 1.0;
    if (fscanf(file, "%*d,%lf,%lf,%lf,%lf,%lf,%lf,%lf", y + year, row + kYears,
               row + 2 * kYears, row + 3 * kYears, row + 4 * kYears, row + 5 * kYears,
               row + 6 * kYears) != kTerms)
      break;
  }
  fclose(file);
  if (year != kYears) fprintf(stderr, "%s: row %d cannot be read\n", path, year + 1);
  return year == kYears;
}

static bool readTerms(const char* path, Term* terms) {
  FILE* file = openTable(path);
  if (file == NULL) return false;
  int term = 0;
  while (term < kTerms &&
         fscanf(file, " \"%15[^\"]\",%lf", terms[term].name, &terms[term].certified) == 2)
    ++term;
  fclose(file);
  if (term != kTerms) fprintf(stderr, "%s: row %d cannot be read\n", path, term + 1);
  return term == kTerms;
}

static void closeClient(Client* client) {
  if (client->context != NULL) client->runtime->destroyContext(client->context);
  if (client->config != NULL) client->runtime->destroyConfig(client->config);
  orbTerminate();
}

static bool openClient(Client* client) {
  *client = (Client){orbInitializeEx(ORB_CLIENT_1_1), NULL, NULL};
  if (client->runtime == NULL) {
    fprintf(stderr, "%s\n", orbGetInitializationErrorMessage());
    return false;
  }
  if (client->runtime->createConfig(&client->config) == ORB_OK) {
    client->runtime->setTimeoutSec(client->config, 30);
    if (client->runtime->createContext(&client->context, client->config) == ORB_OK)
      return true;
  }
  fputs("The client cannot be created\n", stderr);
  closeClient(client);
  return false;
}

static void printServerError(const orbErrorInfo* info) {
  printf("  %-12s %s\n", "identifier", info->details.kaldex.identifier);
  printf("  %-12s %s\n", "message", info->details.kaldex.message);
  if (info->details.kaldex.stack == NULL) return;
  for (uint64_t i = 0; i < info->details.kaldex.stackDepth; ++i) {
    const orbStackFrame* frame = &info->details.kaldex.stack[i];
    printf("  %-12s %s (%s:%d)\n", i == 0 ? "raised in" : "called by", frame->name,
           frame->file, frame->line);
  }
}

// Prints why the last call failed.
static orbErrorType printFailure(const Client* client) {
  orbErrorInfo info;
  client->runtime->getLastErrorInfo(client->context, &info);
  printf("  %s\n", info.message);
  switch (info.type) {
    case ORB_HTTP_ERROR: {
      const char* reason = info.details.http.responseMessage;
      printf("  %-12s %u %.*s\n", "status", info.details.http.responseCode,
             (int)strcspn(reason, "\r\n"), reason);
      break;
    }
    case ORB_KALDEX_ERROR:
      printServerError(&info);
      break;
    case ORB_GENERIC_ERROR:
      printf("  %-12s %s\n", "reason", info.details.generic.message);
      break;
  }
  client->runtime->destroyLastErrorInfo(&info);
  return info.type;
}

static orbStatus call(const Client* client, const char* server, const char* function,
                      uint32_t nlhs, orbArray* lhs, uint32_t nrhs, const orbArray* rhs) {
  const char folder[] = "/demo/";
  char* url = malloc(strlen(server) + sizeof folder + strlen(function));
  if (url == NULL) abort();
  strcat(strcat(strcpy(url, server), folder), function);
  const orbStatus status =
      client->runtime->feval(client->context, url, nlhs, lhs, nrhs, rhs);
  free(url);
  return status;
}

// Prints the coefficients with their standard deviations beside the certified ones; says
// whether all of them agree.
static bool printFit(const Term* terms, const double* estimates,
                     const double* deviations) {
  const Colours colour = colours();
  bool agrees = true;
  printf("  %-10s %21s %11s %21s %11s\n", "term", "estimate", "std. dev.", "certified",
         "rel. error");
  for (int i = 0; i < kTerms; ++i) {
    const double error = fabs(estimates[i] / terms[i].certified - 1.0);
    const bool good = error <= kTolerance;  // false for a NaN too
    printf("  %-10s %21.14e %11.3e %21.14e %s%11.1e%s\n", terms[i].name, estimates[i],
           deviations[i], terms[i].certified, good ? colour.good : colour.bad, error,
           colour.off);
    agrees = agrees && good;
  }
  return agrees;
}

// Whether `a` holds n doubles.
static bool holdsDoubles(const orbArray a, size_t n) {
  return orbIsDouble(a) && !orbIsSparse(a) && orbGetNumberOfElements(a) == n;
}

// Prints the outputs of regress: coefficients, their standard deviations, R squared.
static bool printOutputs(const Term* terms, const orbArray* out) {
  if (!holdsDoubles(out[0], kTerms) || !holdsDoubles(out[1], kTerms)) {
    puts("  The server's answer has another shape than expected");
    return false;
  }
  const bool agrees = printFit(terms, orbGetPr(out[0]), orbGetPr(out[1]));
  printf("\n  R squared %.9f\n", orbGetScalar(out[2]));
  puts(agrees ? "  All coefficients agree with the certified ones to ten digits"
              : "  The coefficients do NOT agree with the certified ones to ten digits");
  return agrees;
}

static bool fit(const Client* client, const char* server, const Term* terms,
                const orbArray* in) {
  printTitle("Employment, 1947 to 1962, explained by six predictors");
  orbArray out[3] = {NULL, NULL, NULL};
  bool agrees = false;
  if (call(client, server, "regress", 3, out, 2, in) == ORB_OK)
    agrees = printOutputs(terms, out);
  else
    printFailure(client);
  for (int i = 0; i < 3; ++i) orbDestroyArray(out[i]);
  return agrees;
}

// Makes a call that must fail, and says whether it failed in the expected way.
static bool showFailure(const Client* client, const char* title, const char* server,
                        const char* function, orbErrorType expected) {
  printTitle(title);
  if (call(client, server, function, 0, NULL, 0, NULL) == ORB_OK) {
    puts("  The call succeeded, which it should not");
    return false;
  }
  return printFailure(client) == expected;
}

static bool showFailures(const Client* client, const char* server) {
  // Nobody listens on the port that was once given to a port multiplexer.
  const char* const nobody = "http://127.0.0.1:1";
  const bool raised = showFailure(client, "An error raised on the server", server, "fail",
                                  ORB_KALDEX_ERROR);
  const bool missing = showFailure(client, "A function that the server does not have",
                                   server, "nosuch", ORB_HTTP_ERROR);
  const bool refused = showFailure(client, "A server that is not there", nobody,
                                   "regress", ORB_GENERIC_ERROR);
  return raised && missing && refused;
}

static bool run(const char* server, const orbArray* in, const Term* terms) {
  Client client;
  if (!openClient(&client)) return false;
  const bool agrees = fit(&client, server, terms, in);
  const bool failed = showFailures(&client, server);
  closeClient(&client);
  return agrees && failed;
}

int main(int argc, char** argv) {
  if (argc < 2 || argc > 4) {
    fprintf(stderr, "usage: %s <base URL> [<data.csv> [<certified.csv>]]\n", argv[0]);
    return 2;
  }
  const char* data = argc > 2 ? argv[2] : "examples/data/longley.csv";
  const char* certified = argc > 3 ? argv[3] : "examples/data/longley-certified.csv";
  Term terms[kTerms];
  const orbArray in[] = {orbCreateDoubleMatrix(kYears, 1, orbREAL),
                         orbCreateDoubleMatrix(kYears, kTerms, orbREAL)};
  const bool good = readObservations(data, orbGetPr(in[0]), orbGetPr(in[1])) &&
                    readTerms(certified, terms) && run(argv[1], in, terms);
  for (int i = 0; i < 2; ++i) orbDestroyArray(in[i]);
  return good ? EXIT_SUCCESS : EXIT_FAILURE;
}

# What data.table does with the CSV file that our program describes: datatable_rival.R FILE THREADS [--answers]
#
# fread, then for each column of whole numbers or text its values with their counts, for each column of doubles number,
# mean, standard deviation and quartiles (type 6: the weighted average at (n + 1)p, our program's own rule). Standard output
# gets {"rows": N, "answers": {...}}.
suppressPackageStartupMessages(library(data.table))
arguments <- commandArgs(trailingOnly = TRUE)
setDTthreads(as.integer(arguments[2]))
data <- fread(arguments[1], na.strings = "", showProgress = FALSE)

describe <- function(name) {
  column <- data[[name]]
  if (!is.double(column)) {
    counts <- data[, .N, by = name]
    met <- !is.na(counts[[1]])
    pairs <- paste0('"', counts[[1]][met], '": ', counts$N[met], collapse = ", ")
    return(sprintf('"%s": {"counts": {%s}, "blank": %d}', name, pairs, sum(counts$N[!met])))
  }
  quartiles <- quantile(column, c(0.25, 0.5, 0.75), type = 6, na.rm = TRUE, names = FALSE)
  sprintf('"%s": {"count": %d, "mean": %.17g, "sd": %.17g, "quartiles": [%s]}', name, sum(!is.na(column)),
          mean(column, na.rm = TRUE), sd(column, na.rm = TRUE), paste(sprintf("%.17g", quartiles), collapse = ", "))
}

answers <- vapply(names(data), describe, "")
cat(sprintf('{"rows": %d', nrow(data)))
if ("--answers" %in% arguments) cat(', "answers": {', paste(answers, collapse = ",\n"), "}", sep = "")
cat("}\n")

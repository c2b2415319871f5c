# reading
